#include "core/bayes/junk_marking.h"

#include "core/text/strings.h"

namespace vonel::bayes {

MarkQuestion markQuestion(Verdict verdict, std::size_t count) {
  const std::string number = std::to_string(count);
  if (verdict == Verdict::Good) {
    return {"Mark as Good?", text::replaceAll("Do you want to mark the @@@ as 'Good' mail?", "@@@",
                                              count == 1 ? "selected message" : number + " selected messages")};
  }
  std::string question = text::replaceAll(
      "You are about to mark @@@ as Junk mail. If you proceed, future messages containing similar parts (subject "
      "words, sender, addressee) have a higher probability of being recognised as spam.  Are you certain you want "
      "to mark the selected message(s) as Junk?",
      "@@@", number + " message(s)");
  text::replaceAllInPlace(question, "(s)", count > 1 ? "s" : "");
  return {"Mark as Junk?", std::move(question)};
}

bool markMessages(BayesTrainer& trainer, BayesFilter& filter, const std::vector<const message::Message*>& messages,
                  Verdict verdict, const ConfirmMark& confirm) {
  if (messages.empty() || !confirm(markQuestion(verdict, messages.size()))) return false;
  for (const message::Message* message : messages) trainer.countMessage(*message, verdict);
  trainer.recreateWordHash();
  filter.loadWordHash();
  return true;
}

bool colourMeansJunk(std::int32_t colour) { return colour == 255 || colour == 33023 || colour == 8388736; }

}  // namespace vonel::bayes
