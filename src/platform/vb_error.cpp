#include "platform/vb_error.h"

#include <utility>

namespace zarvik {

std::string VbErrorText(int32_t number) {
  switch (number) {
    case 3:
      return "Return without GoSub";
    case 5:
      return "Invalid procedure call or argument";
    case 6:
      return "Overflow";
    case 7:
      return "Out of memory";
    case 9:
      return "Subscript out of range";
    case 11:
      return "Division by zero";
    case 13:
      return "Type mismatch";
    case 91:
      return "Object variable or With block variable not set";
    case 94:
      return "Invalid use of Null";
    case 424:
      return "Object required";
    case 429:
      return "ActiveX component can't create object";
    case 438:
      return "Object doesn't support this property or method";
    case 449:
      return "Argument not optional";
    case 450:
      return "Wrong number of arguments or invalid property assignment";
    case 3001:
      return "Arguments are of the wrong type, are out of acceptable range, or are in conflict "
             "with one another.";
    case 3021:
      return "Either BOF or EOF is True, or the current record has been deleted. Requested "
             "operation requires a current record.";
    case 3265:
      return "Item cannot be found in the collection corresponding to the requested name or "
             "ordinal.";
    case 3704:
      return "Operation is not allowed when the object is closed.";
    case 3705:
      return "Operation is not allowed when the object is open.";
    case 3706:
      return "Provider cannot be found. It may not be properly installed.";
    case 3709:
      return "The connection cannot be used to perform this operation. It is either closed or "
             "invalid in this context.";
    default:
      return "";
  }
}

VbError::VbError(int32_t number) : VbError(number, VbErrorText(number)) {}

VbError::VbError(int32_t number, std::string description)
    : std::runtime_error(description), number_(number), description_(std::move(description)) {}

}  // namespace zarvik
