#include "foundation/Result.h"

namespace tavrin {

std::string SystemError::describe() const {
  return operation + " " + path + ": " + code.message();
}

}  // namespace tavrin
