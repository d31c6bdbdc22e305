// What the tests of the 16-bit modes share: random rows of planes behind guards, an independent
// rendering of a formula beside the kernels, and the walk through widths, lengths and layouts.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "blending/core/generic_blender.h"
#include "image/filter/kernel_recipe.h"

namespace brushwork::test {

// Formulas are rendered in 64 bits; where products are kept in 32, wrapped() says so.
using Wide = std::uint64_t;
inline Wide wrapped(Wide value) {
    return value % 4294967296U;
}

// Words of 16 bits; the source of a mode that doesn't carry paint is bytes.
struct OraclePixel {
    std::array<Wide, 4> target{}, source{};
    Wide mask = 0;
};

// How the planes of a row lie.
struct RowShape {
    std::size_t count = 1;
    std::size_t misalignment = 0;
    std::uint32_t sourceStride = 1, maskStride = 1;
    enum class Mask { Edgy, Empty, Full, Patchy, Every } mask = Mask::Edgy;
    bool premultiplied = false;
    bool inPlace = false;  // the source is the target's high plane
    unsigned seed = 1;
};

class WetMode {
  public:
    using Oracle = std::function<void(OraclePixel&)>;
    struct Traits {
        bool dual = true, carries = false, masked = true;
    };
    // A kernel of the table, the level that is forced, and the form that must then have run.
    struct Form {
        bool vector;
        VectorLevel forced, expected;
    };

    WetMode(const npc::GenericBlender& blender, Traits traits, Oracle oracle)
        : blender_(blender), traits_(traits), oracle_(std::move(oracle)) {}

    // One random row through kernels, each from the same planes; whether their bytes are the
    // oracle's.
    [[nodiscard]] ::testing::AssertionResult row(const RowShape& shape,
                                                 const std::vector<Form>& forms) const {
        Planes start(shape);
        start.fill(shape);
        Planes want(shape, start);
        render(shape, want);
        for (const Form& form : forms) {
            Planes got(shape, start);
            const AtLevel forced(form.forced);
            noteKernelForm(form.expected == VectorLevel::Scalar ? VectorLevel::Avx2
                                                                : VectorLevel::Scalar);
            kernel(form.vector)(blender_, rowOf(shape, got));
            if (lastKernelForm() != form.expected)
                return ::testing::AssertionFailure()
                       << "another form ran: " << vectorLevelName(lastKernelForm());
            const std::string difference = differenceOf(start, want, got);
            if (!difference.empty())
                return ::testing::AssertionFailure()
                       << (form.vector ? vectorLevelName(form.forced) : "plain") << ": "
                       << difference << ", count " << shape.count << ", misalignment "
                       << shape.misalignment << ", strides " << shape.sourceStride << " "
                       << shape.maskStride << ", seed " << shape.seed;
        }
        return ::testing::AssertionSuccess();
    }

    // Parameters that lanes don't hold: the plain form answers, whoever is asked.
    [[nodiscard]] ::testing::AssertionResult plainOnly(unsigned seed) const {
        RowShape shape;
        shape.count = 4096;
        shape.seed = seed;
        return row(shape, {{false, VectorLevel::Avx2, VectorLevel::Scalar},
                           {true, VectorLevel::Avx2, VectorLevel::Scalar}});
    }

    // The definition and every vector form on long rows: random pixels, every mask byte.
    void longRows(const std::string& what, unsigned seed, std::size_t count = 1 << 12) const {
        std::vector<Form> forms = {{false, VectorLevel::Avx2, VectorLevel::Scalar}};
        for (const VectorLevel level : vectorLevels()) forms.push_back({true, level, level});
        for (const bool premultiplied : {false, true}) {
            for (const auto mask : {RowShape::Mask::Edgy, RowShape::Mask::Every}) {
                RowShape shape;
                shape.count = count;
                shape.seed = ++seed;
                shape.mask = mask;
                shape.premultiplied = premultiplied;
                ASSERT_TRUE(row(shape, forms)) << what;
            }
        }
    }

    // Every vector form: lengths, alignments, masks, constants, in place.
    void everyLayout() const {
        std::vector<Form> forms;
        for (const VectorLevel level : vectorLevels()) forms.push_back({true, level, level});
        static constexpr std::size_t misalignments[] = {0, 1, 2, 3, 4, 8, 15, 16, 29, 31};
        unsigned seed = 1000;
        for (std::size_t count = 0; count <= 70; ++count) {
            for (const std::size_t misalignment : misalignments) {
                for (const auto mask : {RowShape::Mask::Edgy, RowShape::Mask::Empty,
                                        RowShape::Mask::Full, RowShape::Mask::Patchy}) {
                    RowShape shape;
                    shape.count = count;
                    shape.misalignment = misalignment;
                    shape.mask = mask;
                    shape.maskStride = ++seed % 3 != 0;
                    shape.sourceStride = traits_.carries || seed % 2 != 0;
                    shape.inPlace = !traits_.carries && shape.sourceStride != 0 && seed % 5 == 0;
                    shape.seed = seed;
                    ASSERT_TRUE(row(shape, forms));
                }
            }
        }
    }

  private:
    struct Planes {
        GuardedBytes hi, lo, source, source2, mask;

        // Constants stand in 8 places.
        explicit Planes(const RowShape& s)
            : hi(4 * s.count, s.misalignment),
              lo(4 * s.count, (s.misalignment + s.seed) % 32),
              source(s.sourceStride != 0 ? 4 * s.count : 32, (s.misalignment + 5) % 32),
              source2(source.size(), (s.misalignment + 10) % 32),
              mask(s.maskStride != 0 ? s.count : 8, (s.misalignment + 3) % 32) {}
        // The same bytes at the same alignment.
        Planes(const RowShape& s, Planes& other) : Planes(s) {
            for (std::size_t i = 0; i < 5; ++i)
                std::copy_n(other.all()[i]->data(), other.all()[i]->size(), all()[i]->data());
        }

        std::array<GuardedBytes*, 5> all() { return {&hi, &lo, &source, &source2, &mask}; }

        void fill(const RowShape& s) {
            Random random(s.seed);
            for (GuardedBytes* plane : {&hi, &lo, &source, &source2}) {
                plane->fill(random);
                if (s.premultiplied) premultiply(*plane);
            }
            if (s.sourceStride == 0) repeatFirst(source, 4), repeatFirst(source2, 4);
            fillMask(s.mask, random);
            if (s.maskStride == 0) repeatFirst(mask, 1);
        }

        static void premultiply(GuardedBytes& plane) {
            for (std::size_t i = 0; i < plane.size(); ++i) {
                if (i % 4 == 3) continue;
                std::uint8_t& byte = plane.data()[i];
                byte = static_cast<std::uint8_t>(byte * plane.data()[i | 3] / 255);
            }
        }
        static void repeatFirst(GuardedBytes& plane, std::size_t period) {
            for (std::size_t i = period; i < plane.size(); ++i)
                plane.data()[i] = plane.data()[i - period];
        }
        void fillMask(RowShape::Mask kind, Random& random) {
            mask.fill(random);
            for (std::size_t i = 0; i < mask.size(); ++i) {
                std::uint8_t& byte = mask.data()[i];
                if (kind == RowShape::Mask::Empty) byte = 0;
                if (kind == RowShape::Mask::Full) byte = 255;
                if (kind == RowShape::Mask::Patchy && i / 11 % 2 == 0) byte = 0;
                if (kind == RowShape::Mask::Every) byte = static_cast<std::uint8_t>(i);
            }
        }
    };

    [[nodiscard]] npc::Kernel kernel(bool vector) const {
        const npc::KernelTable& table = blender_.kernels();
        if (!traits_.masked) return vector ? table.rgbaVector : table.rgba;
        if (traits_.dual) return vector ? table.dualPlaneMaskedVector : table.dualPlaneMasked;
        return vector ? table.rgbaMaskedVector : table.rgbaMasked;
    }

    [[nodiscard]] npc::KernelRow rowOf(const RowShape& shape, Planes& planes) const {
        npc::KernelRow row;
        row.hi = planes.hi.data();
        row.lo = traits_.dual ? planes.lo.data() : nullptr;
        row.source = shape.inPlace ? planes.hi.data() : planes.source.data();
        row.source2 = traits_.carries ? planes.source2.data() : nullptr;
        row.mask = traits_.masked ? planes.mask.data() : nullptr;
        row.sourceStride = shape.sourceStride;
        row.maskStride = shape.maskStride;
        row.count = shape.count;
        return row;
    }

    void render(const RowShape& shape, Planes& planes) const {
        for (std::size_t i = 0; i < shape.count; ++i) {
            OraclePixel p;
            p.mask = traits_.masked ? planes.mask.data()[i * shape.maskStride] : 255;
            std::uint8_t* const hi = planes.hi.data() + 4 * i;
            std::uint8_t* const lo = planes.lo.data() + 4 * i;
            std::uint8_t* const source =
                shape.inPlace ? hi : planes.source.data() + 4 * i * shape.sourceStride;
            std::uint8_t* const source2 = planes.source2.data() + 4 * i * shape.sourceStride;
            for (std::size_t c = 0; c < 4; ++c) {
                p.target[c] = hi[c] * 256U + (traits_.dual ? lo[c] : 0U);
                p.source[c] = traits_.carries ? source[c] * 256U + source2[c] : source[c];
            }
            oracle_(p);
            for (std::size_t c = 0; c < 4; ++c) {
                hi[c] = static_cast<std::uint8_t>(p.target[c] / 256 % 256);
                if (traits_.dual) lo[c] = static_cast<std::uint8_t>(p.target[c] % 256);
                if (!traits_.carries) continue;
                source[c] = static_cast<std::uint8_t>(p.source[c] / 256 % 256);
                source2[c] = static_cast<std::uint8_t>(p.source[c] % 256);
            }
        }
    }

    static std::string differenceOf(Planes& start, Planes& want, Planes& got) {
        static const char* const names[] = {"hi", "lo", "source", "source2", "mask"};
        for (std::size_t i = 0; i < 5; ++i) {
            if (!got.all()[i]->guardsIntact()) return std::string("bytes around ") + names[i];
            const std::uint8_t* const a = want.all()[i]->data();
            const std::uint8_t* const b = got.all()[i]->data();
            for (std::size_t n = 0; n < want.all()[i]->size(); ++n) {
                if (a[n] == b[n]) continue;
                return std::string(names[i]) + " byte " + std::to_string(n) + ": " +
                       std::to_string(b[n]) + " instead of " + std::to_string(a[n]) + ", was " +
                       std::to_string(start.all()[i]->data()[n]);
            }
        }
        return {};
    }

    const npc::GenericBlender& blender_;
    Traits traits_;
    Oracle oracle_;
};

// Values that parameters between 0 and 1 are tried with.
inline constexpr float unitEdges[] = {0.0F, 1e-5F, 1.0F / 256, 0.1F, 0.37F, 0.5F, 0.999F, 1.0F};

}  // namespace brushwork::test
