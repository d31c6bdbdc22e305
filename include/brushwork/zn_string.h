// znString::String: what narrow and wide text have in common.
#pragma once

#include <cstddef>

#include "brushwork/export.h"

namespace brushwork::znString {

// The one "not found" value of every search. As a length or an end it means "up to the end".
inline constexpr std::size_t npos = static_cast<std::size_t>(-1);

// Text of unknown unit size. Two strings work together through this interface only if their unit
// sizes agree; assignFrom and append convert where they differ.
class BRUSHWORK_API String {
  public:
    virtual ~String() = default;
    [[nodiscard]] virtual bool isEmpty() const = 0;
    [[nodiscard]] virtual bool isNull() const { return isEmpty(); }
    [[nodiscard]] virtual std::size_t length() const = 0;  // in units
    [[nodiscard]] virtual int nullLength() const { return 0; }
    [[nodiscard]] virtual std::size_t lastIndex() const { return length() - 1; }  // npos if empty
    // The units with a terminator behind them; valid until the string changes.
    [[nodiscard]] virtual const void* data() const = 0;
    virtual void assignFrom(const String& other) = 0;
    [[nodiscard]] virtual std::size_t unitSize() const = 0;  // bytes: 1 or 2
    virtual void append(const String& other) = 0;

  protected:
    String() = default;
    String(const String&) = default;
    String& operator=(const String&) = default;
};

}  // namespace brushwork::znString
