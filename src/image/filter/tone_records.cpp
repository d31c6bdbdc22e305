#include "image/filter/tone_records.h"

#include "image/filter/tone_records_walk.h"

namespace brushwork {

void toneRecordsScalar(const std::uint32_t* pixels, std::size_t count, float* records) {
    ToneRecordWalk<PlainFloats>::run(pixels, count, records);
}

void toneRecords(const std::uint32_t* pixels, std::size_t count, float* records) {
    switch (vectorLevel()) {
        case VectorLevel::Scalar: return toneRecordsScalar(pixels, count, records);
        case VectorLevel::Sse2: return toneRecordsSse2(pixels, count, records);
        case VectorLevel::Avx2: return toneRecordsAvx2(pixels, count, records);
    }
}

}  // namespace brushwork
