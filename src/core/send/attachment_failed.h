#pragma once
// An attachment could not be read or encoded while the spool file was written.
#include "core/log/app_error.h"

namespace vonel::send {

class AttachmentFailed : public AppError {
 public:
  using AppError::AppError;
};

}  // namespace vonel::send
