#include "protocol/pop3/multi_line_decoder.h"

#include <gtest/gtest.h>

namespace vonel::pop3 {
namespace {

struct Decoded {
  std::string data;
  bool ended = false;
};

// The reply cut at the given places, fed piece by piece.
Decoded decodeInPieces(std::string_view reply, const std::vector<std::size_t>& cuts) {
  MultiLineDecoder decoder;
  Decoded result;
  std::size_t from = 0;
  for (std::size_t cut : cuts) {
    result.ended = decoder.decode(reply.substr(from, cut - from), result.data) || result.ended;
    from = cut;
  }
  result.ended = decoder.decode(reply.substr(from), result.data) || result.ended;
  return result;
}

// Every cut into two and three pieces gives what the reply gives whole.
void expectEverySplit(std::string_view reply, std::string_view data, bool ended = true) {
  for (std::size_t a = 0; a <= reply.size(); ++a) {
    for (std::size_t b = a; b <= reply.size(); ++b) {
      const Decoded decoded = decodeInPieces(reply, {a, b});
      ASSERT_EQ(decoded.data, data) << "cut at " << a << " and " << b;
      ASSERT_EQ(decoded.ended, ended) << "cut at " << a << " and " << b;
    }
  }
}

TEST(MultiLineDecoder, UndoesTheStuffingOfEveryLineThatStartsWithADot) {
  expectEverySplit("+OK 120 octets\r\nSubject: dots\r\n\r\n..\r\n...\r\n..x\r\nx.\r\n.\r\n",
                   "Subject: dots\r\n\r\n.\r\n..\r\n.x\r\nx.\r\n");
  // A dot that no server should have left unstuffed still goes.
  expectEverySplit("+OK\r\n.x\r\n.\rnot the end\r\n.\r\n", "x\r\n\rnot the end\r\n");
}

TEST(MultiLineDecoder, EndsAtTheTerminatorWithTheLastLineEndKept) {
  expectEverySplit("+OK\r\n.\r\n", "");
  expectEverySplit("+OK\r\nlast line\r\n.\r\nBEYOND", "last line\r\n");
  // Bare line feeds start lines too, as they always ended the reply.
  expectEverySplit("+OK\nbare\n..\n.\r\n", "bare\n.\n");
  expectEverySplit("+OK\r\nno end yet\r\n.\r", "no end yet\r\n", false);
}

TEST(MultiLineDecoder, StartsAfreshAfterAReset) {
  MultiLineDecoder decoder;
  std::string data;
  EXPECT_FALSE(decoder.decode("+OK\r\ncut off", data));
  decoder.reset();
  data.clear();
  EXPECT_TRUE(decoder.decode("+OK\r\n..whole\r\n.\r\n", data));
  EXPECT_EQ(data, ".whole\r\n");
}

}  // namespace
}  // namespace vonel::pop3
