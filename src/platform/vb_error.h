// Run-time errors with the numbers and texts of the VB runtime and of ADO.
//
// Everything below the component boundary reports failures by throwing a
// VbError; every public method of the three classes catches it, hands it to
// the error reporter and returns its neutral answer.
#ifndef ZARVIK_PLATFORM_VB_ERROR_H_
#define ZARVIK_PLATFORM_VB_ERROR_H_

#include <cstdint>
#include <stdexcept>
#include <string>

namespace zarvik {

// VB runtime error numbers the component can meet.
namespace vberr {
constexpr int32_t kInvalidProcedureCall = 5;  // "Invalid procedure call or argument"
constexpr int32_t kOverflow = 6;              // "Overflow"
constexpr int32_t kSubscriptOutOfRange = 9;   // "Subscript out of range"
constexpr int32_t kTypeMismatch = 13;         // "Type mismatch"
constexpr int32_t kObjectNotSet = 91;         // "Object variable or With block variable not set"
constexpr int32_t kInvalidUseOfNull = 94;     // "Invalid use of Null"
constexpr int32_t kNotSupported = 438;        // "Object doesn't support this property or method"
constexpr int32_t kWrongArgCount =
    450;  // "Wrong number of arguments or invalid property assignment"
// ADO errors (as VB shows them).
constexpr int32_t kAdoItemNotFound = 3265;      // field or parameter name unknown
constexpr int32_t kAdoNoCurrentRecord = 3021;   // BOF or EOF
constexpr int32_t kAdoObjectClosed = 3704;      // operation on a closed object
constexpr int32_t kAdoObjectOpen = 3705;        // operation on an open object
constexpr int32_t kAdoProviderNotFound = 3706;  // unknown Provider= of a connection string
constexpr int32_t kAdoConnectionUnusable = 3709;
constexpr int32_t kAdoArgumentsWrong = 3001;  // "Arguments are of the wrong type..."
// Provider failure (DB_E_ERRORSINCOMMAND): the provider's own message follows.
constexpr int32_t kProviderError = -2147217900;
// Provider could not connect (DB_SEC_E_AUTH_FAILED family / data source not found).
constexpr int32_t kProviderConnectFailed = -2147467259;
}  // namespace vberr

// The standard description VB gives a run-time error number ("" if unknown).
std::string VbErrorText(int32_t number);

class VbError : public std::runtime_error {
 public:
  // Error with the standard text of its number.
  explicit VbError(int32_t number);
  VbError(int32_t number, std::string description);

  int32_t Number() const { return number_; }
  const std::string& Description() const { return description_; }

 private:
  int32_t number_;
  std::string description_;
};

}  // namespace zarvik

#endif  // ZARVIK_PLATFORM_VB_ERROR_H_
