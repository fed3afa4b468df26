#pragma once
// The user's verdict on messages, taught to the filter: after a question,
// each message is counted into the junk or the good table, and the word table
// is computed and read again so that the next judgement uses it at once.
#include <functional>
#include <string>
#include <vector>

#include "core/bayes/bayes_filter.h"
#include "core/bayes/bayes_trainer.h"
#include "core/message/message.h"

namespace vonel::bayes {

// The question's heading and text for `count` messages.
struct MarkQuestion {
  std::string heading;
  std::string text;
};
MarkQuestion markQuestion(Verdict verdict, std::size_t count);

// Shows the question; true for Yes.
using ConfirmMark = std::function<bool(const MarkQuestion&)>;

// Nothing happens for no messages or without a Yes. True when the tables changed.
bool markMessages(BayesTrainer& trainer, BayesFilter& filter, const std::vector<const message::Message*>& messages,
                  Verdict verdict, const ConfirmMark& confirm);

// Row colours that stand for a message judged as spam or suspect; every other
// row of the scanner's list counts as good mail when the list is reinforced.
bool colourMeansJunk(std::int32_t colour);

}  // namespace vonel::bayes
