#pragma once
// What the spam score asks of the address book.
#include <string_view>

namespace vonel::bayes {

class ContactLookup {
 public:
  virtual ~ContactLookup() = default;
  virtual bool contactExists(std::string_view name, std::string_view email) const = 0;
};

}  // namespace vonel::bayes
