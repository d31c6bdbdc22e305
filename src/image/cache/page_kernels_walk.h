// What the vector forms of the page kernels share; each includes it with vectors of its own.
//
// `Vectors` is a type of the including file alone, so that no two files share code that was
// compiled for different processors. It offers
//   Vector, bytes, level      a register, its size, the level it stands for
//   words(w), all(b), top()   a word or a byte everywhere; the highest byte of each word set
//   load(p), exclusive(a, b), either(a, b), both(a, b), any(bits)
#pragma once

#include <cstddef>
#include <cstdint>

#include "image/cache/page_kernels.h"

namespace brushwork {

template <class Vectors>
class PageKernelWalk {
  public:
    static bool uniform32(const std::uint32_t* pixels, std::size_t count) {
        noteKernelForm(Vectors::level);
        if (count == 0) return true;
        std::size_t done = 0;
        if (!matches(bytesOf(pixels), count * 4, Vectors::words(pixels[0]), Vectors::all(255),
                     done))
            return false;
        for (std::size_t i = done / 4; i < count; ++i)
            if (pixels[i] != pixels[0]) return false;
        return true;
    }

    static bool uniform8(const std::uint8_t* pixels, std::size_t count) {
        noteKernelForm(Vectors::level);
        if (count == 0) return true;
        std::size_t done = 0;
        if (!matches(pixels, count, Vectors::all(pixels[0]), Vectors::all(255), done)) return false;
        for (std::size_t i = done; i < count; ++i)
            if (pixels[i] != pixels[0]) return false;
        return true;
    }

    static bool alphaIs(const std::uint32_t* pixels, std::size_t count, std::uint8_t alpha) {
        noteKernelForm(Vectors::level);
        std::size_t done = 0;
        if (!matches(bytesOf(pixels), count * 4, Vectors::all(alpha), Vectors::top(), done))
            return false;
        for (std::size_t i = done / 4; i < count; ++i)
            if (pixels[i] >> 24 != alpha) return false;
        return true;
    }

    // Of a cell no more is looked at than shows it to be filled.
    static std::uint64_t filledCells(const std::uint32_t* pixels) {
        noteKernelForm(Vectors::level);
        std::uint64_t cells = 0;
        for (unsigned cell = 0; cell < 64; ++cell) {
            const std::uint8_t* row = bytesOf(pixels) + cell / 8 * (16 * rowBytes) + cell % 8 * 64;
            for (int y = 0; y < 16; ++y, row += rowBytes) {
                Vector bits = Vectors::load(row);
                for (std::size_t i = step; i < 64; i += step)
                    bits = Vectors::either(bits, Vectors::load(row + i));
                if (!Vectors::any(bits)) continue;
                cells |= std::uint64_t{1} << cell;
                break;
            }
        }
        return cells;
    }

  private:
    using Vector = typename Vectors::Vector;
    static constexpr std::size_t rowBytes = 4 * 128;
    static constexpr std::size_t step = Vectors::bytes;

    static const std::uint8_t* bytesOf(const std::uint32_t* pixels) {
        return reinterpret_cast<const std::uint8_t*>(pixels);
    }
    static Vector difference(const std::uint8_t* bytes, Vector pattern) {
        return Vectors::exclusive(Vectors::load(bytes), pattern);
    }
    // The bits in which eight vectors differ from the pattern.
    static Vector differenceOf8(const std::uint8_t* bytes, Vector pattern) {
        Vector a = difference(bytes, pattern);
        Vector b = difference(bytes + step, pattern);
        for (std::size_t i = 2; i < 8; i += 2) {
            a = Vectors::either(a, difference(bytes + i * step, pattern));
            b = Vectors::either(b, difference(bytes + (i + 1) * step, pattern));
        }
        return Vectors::either(a, b);
    }
    // Whether whole vectors equal the pattern where `mask` is set. `done` gets the bytes looked at.
    static bool matches(const std::uint8_t* bytes, std::size_t size, Vector pattern, Vector mask,
                        std::size_t& done) {
        std::size_t i = 0;
        for (; i + 8 * step <= size; i += 8 * step)
            if (Vectors::any(Vectors::both(differenceOf8(bytes + i, pattern), mask))) return false;
        for (; i + step <= size; i += step)
            if (Vectors::any(Vectors::both(difference(bytes + i, pattern), mask))) return false;
        done = i;
        return true;
    }
};

}  // namespace brushwork
