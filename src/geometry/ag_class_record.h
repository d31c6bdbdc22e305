// The object model of the geometry kernel. Every kernel object begins with a pointer to the record
// of its class; the record holds the texts of the class's checks and what can be done with an
// object.
//
//     const std::int32_t message = ag_check(curve.get());
//     if (message != 0) log(agMessage(curve->cls->checkMessages, message));
//
// Objects are plain records that anyone may edit, so checks trust none of them: whatever pointers
// are null, whatever counts are wrong, however the links of a list run, a check ends and answers.
// (A pointer to memory that isn't there is beyond any check.)
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <span>

namespace brushwork {

struct AG_CLASS;

// The first member of every kernel object. AG_GOB is at the root of all classes.
struct AG_GOB {
    const AG_CLASS* cls = nullptr;
};

// Frees an object in the way of the class that made it, whatever its class pointer says by now.
struct AgFree {
    void (*free)(AG_GOB* object) noexcept = nullptr;
    void operator()(AG_GOB* object) const noexcept {
        if (free) free(object);
    }
};
using AgObjectPtr = std::unique_ptr<AG_GOB, AgFree>;

// Entry 0 tells how many follow; entry n begins with its number, a colon and a blank.
using AG_MESSAGES = std::span<const char* const>;

// What a class can do; null for what it can't.
struct AG_OPERATIONS {
    // 0, or the number of the first message that holds.
    std::int32_t (*ag_check)(const AG_GOB* object) = nullptr;
    // 0, or the number of the first difference. Both objects are of the class.
    std::int32_t (*ag_compare)(const AG_GOB* a, const AG_GOB* b) = nullptr;
    // Prints as far as the object is sound.
    void (*print)(const AG_GOB* object, std::ostream& out) = nullptr;
    // A deep copy; null if the object isn't sound enough to be copied.
    AgObjectPtr (*copy)(const AG_GOB* object) = nullptr;
    // For objects made by the class's own builder or `copy`, once; never for a record that stands
    // on the stack or in another object.
    void (*free)(AG_GOB* object) noexcept = nullptr;
};

struct AG_CLASS {
    AG_MESSAGES checkMessages;
    AG_MESSAGES compareMessages;
    std::int32_t version = 1;
    std::int32_t reserved = 0;
    const char* name = nullptr;
    std::int32_t reserved2 = 0;
    std::uint32_t size = 0;  // of an object, in bytes
    const AG_CLASS* parent = nullptr;
    AG_OPERATIONS operations;
};

// Abstract classes: AG_GOB for all, AG_OB for objects, AG_POB for those with parameters, AG_POB1
// with one (curves), AG_POB2 with two (surfaces). Each checks only that an object is of its kind.
extern const AG_CLASS agGobClass, agObClass, agPobClass, agPob1Class, agPob2Class;

// The test that opens every check: does the object's class pointer lead to `expected`, or to a
// record of the same name and size?
[[nodiscard]] bool agIsOfClass(const AG_GOB* object, const AG_CLASS& expected);
// The same, for the object's class or any of its parents.
[[nodiscard]] bool agIsOfKind(const AG_GOB* object, const AG_CLASS& expected);

// 0 for a valid object, or the number of the first message of its class that holds. 1, the message
// of a corrupt class record, also for null and for an object without a class.
[[nodiscard]] std::int32_t ag_check(const AG_GOB* object);
// 0 for equal objects, or the number of the first difference in the table of their class; -1 if
// they can't be compared: either is null, or they aren't of one class.
[[nodiscard]] std::int32_t ag_compare(const AG_GOB* a, const AG_GOB* b);
// False for an object that has no print routine.
bool ag_print(const AG_GOB* object, std::ostream& out);
// Null for an object that can't be copied.
[[nodiscard]] AgObjectPtr ag_copy(const AG_GOB* object);

// The text of a message, as it stands in the table; null for a number that isn't there.
[[nodiscard]] const char* agMessage(AG_MESSAGES table, std::int32_t number);

}  // namespace brushwork
