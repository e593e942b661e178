#pragma once

#include <functional>
#include <string>
#include <utility>

#include "host/class_desc.h"

// A class of a test's own, for a session to register. `make` gives what ClassDesc::Create gives.
class TestClass final : public ClassDesc {
  public:
    TestClass(std::string name, SClass_ID superClass, Class_ID id, std::function<void*()> make)
        : name_(std::move(name)), superClass_(superClass), id_(id), make_(std::move(make)) {}

    int IsPublic() override { return 1; }
    void* Create(bool) override { return make_(); }
    const char* ClassName() override { return name_.c_str(); }
    SClass_ID SuperClassID() override { return superClass_; }
    Class_ID ClassID() override { return id_; }
    const char* Category() override { return "Test"; }

  private:
    std::string name_;
    SClass_ID superClass_;
    Class_ID id_;
    std::function<void*()> make_;
};
