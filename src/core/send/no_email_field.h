#pragma once
// The mail merge's data file has no $EMAIL column.
#include "core/log/app_error.h"

namespace vonel::send {

class NoEmailField : public AppError {
 public:
  NoEmailField() : AppError(0, "Error: Your mail merge data file must contain an $EMAIL field") {}
};

}  // namespace vonel::send
