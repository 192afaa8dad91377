// A record (user-defined type) returned through the automation boundary:
// named fields in declared order. It is an Object so that it travels in a
// Variant; its fields read like properties, and the host protocol prints it
// as {"$":"record","type":...,"fields":{...}}.
#ifndef ZARVIK_AUTOMATION_RECORD_OBJECT_H_
#define ZARVIK_AUTOMATION_RECORD_OBJECT_H_

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/object.h"
#include "platform/variant.h"

namespace zarvik::automation {

class RecordObject : public Object {
 public:
  RecordObject(std::string type_name, std::vector<std::pair<std::string, Variant>> fields)
      : type_name_(std::move(type_name)), fields_(std::move(fields)) {}

  const std::vector<std::pair<std::string, Variant>>& Fields() const { return fields_; }

  std::string TypeName() const override { return type_name_; }
  // A field's value; unknown field: 438.
  Variant GetProperty(const std::string& name) override;
  void PutProperty(const std::string& name, const Variant& value) override;

 private:
  std::string type_name_;
  std::vector<std::pair<std::string, Variant>> fields_;
};

// A record value in a Variant, e.g.
//   MakeRecord("tsRvkTipiMov", {{"Cons", Variant::Boolean(true)}, ...})
Variant MakeRecord(std::string type_name, std::vector<std::pair<std::string, Variant>> fields);

}  // namespace zarvik::automation

#endif  // ZARVIK_AUTOMATION_RECORD_OBJECT_H_
