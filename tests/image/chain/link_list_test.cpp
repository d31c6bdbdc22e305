#include "image/chain/link_list.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace brushwork {
namespace {

// A target is only compared by the list, never looked at.
ilLink* fakeTarget(std::uint32_t number) {
    return reinterpret_cast<ilLink*>(std::uintptr_t{number + 1} * 16);
}

TEST(LinkList, AgreesWithAVectorOverRandomOperations) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        LinkList list;
        std::vector<LinkRecord*> model;
        std::int32_t cursor = -1;
        for (int step = 0; step < 1500; ++step) {
            const auto slot = static_cast<std::uint32_t>(random() % 20);
            const auto count = static_cast<std::int32_t>(model.size());
            const auto kind = random() % 10;
            if (kind < 2) {
                model.push_back(list.append(fakeTarget(slot), slot));
            } else if (kind == 2) {
                model.insert(model.begin(), list.insertFront(fakeTarget(slot), slot));
                if (cursor >= 0) ++cursor;
            } else if (kind == 3 && count > 0) {
                const auto victim = static_cast<std::ptrdiff_t>(random() % model.size());
                list.remove(model[static_cast<std::size_t>(victim)]);
                model.erase(model.begin() + victim);
                cursor = -1;
            } else {
                const auto index = static_cast<std::int32_t>(random() % (model.size() + 2)) - 1;
                const bool inside = index >= 0 && index < count;
                ASSERT_EQ(list.at(index), inside ? model[static_cast<std::size_t>(index)] : nullptr)
                    << "index " << index << " of " << count;
                if (inside && index != 0 && index != count - 1) cursor = index;
            }
            ASSERT_EQ(list.cursorIndex(), cursor);
            ASSERT_EQ(list.count(), static_cast<std::int32_t>(model.size()));
            ASSERT_EQ(list.first(), model.empty() ? nullptr : model.front());
            ASSERT_EQ(list.last(), model.empty() ? nullptr : model.back());
            std::vector<LinkRecord*> walked;
            for (auto* r = list.first(); r; r = list.after(r)) walked.push_back(r);
            ASSERT_EQ(walked, model);
            LinkRecord* found = nullptr;
            for (auto it = model.rbegin(); it != model.rend(); ++it) {
                if ((*it)->slot == slot) found = *it;
            }
            ASSERT_EQ(list.findSlot(slot), found);
            ASSERT_EQ(list.findTarget(fakeTarget(slot)), found);
        }
    }
}

}  // namespace
}  // namespace brushwork
