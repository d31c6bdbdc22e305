// ClassDescriptor: the run-time name of an image class and its place in the class tree.
#pragma once

namespace brushwork {

// One constant record a class. The base of ilLink's is null.
struct ClassDescriptor {
    const char* name;
    const ClassDescriptor* base;
};

}  // namespace brushwork
