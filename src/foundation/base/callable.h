// znRTB: callables as counted objects, for lists of things to call that outlive their makers.
//
//     Ref<FunctionVoid> call = makeRef<FunctionVoidMember<Clock>>(clock, &Clock::tick);
//     (*call)();
#pragma once

#include "brushwork/ref.h"
#include "brushwork/reference_count.h"

namespace brushwork::znRTB {

class FunctionBase : public zn::ReferenceCount {};

// Called without arguments, for its effect.
class FunctionVoid : public FunctionBase {
  public:
    virtual void operator()() = 0;
};

// Calls a member of an object that it borrows.
template <class T>
class FunctionVoidMember final : public FunctionVoid {
  public:
    using Member = void (T::*)();
    FunctionVoidMember(T& object, Member member) : object_(&object), member_(member) {}
    void operator()() override { (object_->*member_)(); }

  private:
    T* object_;
    Member member_;
};

}  // namespace brushwork::znRTB
