#include "image/chain/il_link.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "brushwork/ref.h"

namespace brushwork {
namespace {

class TestLink final : public ilLink {
  public:
    static const ClassDescriptor descriptor;
    explicit TestLink(std::uint32_t allowed = AttributeBits) { allowedFlags_ = allowed; }
    [[nodiscard]] const char* className() const override { return descriptor.name; }
    [[nodiscard]] const ClassDescriptor& classDescriptor() const override { return descriptor; }

    int updates = 0;
    int firstAlterations = 0;
    std::uint32_t alterInUpdate = 0;

  protected:
    ~TestLink() override = default;
    void update() override {
        ++updates;
        setAltered(alterInUpdate);
        ilLink::update();
    }
    void onFirstAltered() override { ++firstAlterations; }
};
const ClassDescriptor TestLink::descriptor = {"Test", &ilLink::descriptor};

struct Reports {
    std::vector<std::pair<ilLink*, char>> list;
    explicit Reports(std::uint32_t mask) {
        setLinkTraceCallback(&take, reinterpret_cast<std::intptr_t>(this));
        setLinkTraceMask(mask);
    }
    ~Reports() {
        setLinkTraceCallback(nullptr, 0);
        setLinkTraceMask(0, TraceScope::AllLinks);
    }
    [[nodiscard]] std::string codes() const {
        std::string text;
        for (const auto& report : list) text += report.second;
        return text;
    }
    static void take(ilLink* link, char code, std::intptr_t context) {
        reinterpret_cast<Reports*>(context)->list.emplace_back(link, code);
    }
};

TEST(IlLink, KnowsItsClass) {
    const auto link = makeRef<TestLink>();
    EXPECT_EQ(link->isKindOf(TestLink::descriptor), 1);
    EXPECT_EQ(link->isKindOf(ilLink::descriptor), 2);
    const ClassDescriptor other = {"Other", nullptr};
    EXPECT_EQ(link->isKindOf(other), 0);
    EXPECT_EQ(link->classAt(-1), &TestLink::descriptor);
    EXPECT_EQ(link->classAt(1), nullptr);
    EXPECT_STREQ(ilLink::descriptor.name, "Link");
}

TEST(IlLink, ModifiersOfAChange) {
    const auto parent = makeRef<TestLink>(0x7u | AlteredScale);
    const auto child = makeRef<TestLink>();
    child->setParent(parent.get(), 0);
    parent->reset();
    child->reset();

    EXPECT_EQ(parent->setAltered(0), ImageOk);
    EXPECT_EQ(parent->setAltered(AlteredFill), ImageNotAllowed);
    EXPECT_EQ(parent->setAltered(AlteredFill | NotifyOnly | AlteredDataType), ImageNotAllowed);
    EXPECT_EQ(parent->altered(), 0u);
    EXPECT_EQ(parent->setFlags(), 0u);

    EXPECT_EQ(parent->setAltered(AlteredDataType | KeepFromChildren), ImageOk);
    EXPECT_EQ(parent->altered(), std::uint32_t{AlteredDataType});
    EXPECT_EQ(child->altered(), 0u);
    parent->reset();

    // Recorded, told to the children, but the link itself stays up to date.
    EXPECT_EQ(parent->setAltered(AlteredScale | NotifyOnly), ImageOk);
    EXPECT_EQ(parent->altered(), 0u);
    EXPECT_EQ(parent->setFlags(), std::uint32_t{AlteredDataType | AlteredScale});
    EXPECT_EQ(child->altered(), std::uint32_t{AlteredPixels | ToldChildren});
    child->reset();

    EXPECT_EQ(parent->setAltered(KeepFromChildren), ImageOk);
    EXPECT_EQ(parent->altered(), std::uint32_t{AlteredPixels});
}

TEST(IlLink, ASecondChangeBeforeResetStops) {
    const auto top = makeRef<TestLink>();
    const auto middle = makeRef<TestLink>();
    const auto bottom = makeRef<TestLink>();
    middle->setParent(top.get(), 0);
    bottom->setParent(middle.get(), 0);
    EXPECT_EQ(bottom->chainHeight(), 2);
    top->setAltered(AlteredFill);
    EXPECT_EQ(bottom->firstAlterations, 2);
    // Brought up to date behind the back of its parents it hears no more until they are, too.
    EXPECT_EQ(bottom->altered(), std::uint32_t{AlteredPixels | ToldChildren});
    bottom->reset();
    EXPECT_EQ(top->altered() | middle->altered() | bottom->altered(), 0u);
    top->setAltered(AlteredFill);
    top->setAltered(AlteredDataType);
    EXPECT_EQ(top->altered(), std::uint32_t{AlteredFill | AlteredDataType | ToldChildren});
    EXPECT_EQ(bottom->firstAlterations, 3);
    // What update() itself alters travels nowhere and is gone afterwards.
    middle->alterInUpdate = AlteredSizeX;
    bottom->reset();
    EXPECT_EQ(middle->altered() | bottom->altered(), 0u);
    EXPECT_NE(middle->setFlags() & AlteredSizeX, 0u);
    middle->setAltered(AlteredFill | KeepFromChildren);
    middle->reset();
    EXPECT_EQ(bottom->altered(), 0u);
}

TEST(IlLink, DisabledParentsAreLookedThrough) {
    const auto a = makeRef<TestLink>();
    const auto b = makeRef<TestLink>();
    const auto c = makeRef<TestLink>();
    const auto stubborn = makeRef<TestLink>();
    stubborn->setNoBypass(true);
    b->setParent(a.get(), 3);
    c->setParent(b.get(), 0);
    stubborn->setParent(b.get(), 0);
    EXPECT_EQ(c->chainHeight(), 2);
    EXPECT_EQ(stubborn->chainHeight(), 2);
    const std::uint32_t before = stubborn->altered();
    EXPECT_EQ(b->setEnabled(false), ImageOk);
    EXPECT_EQ(stubborn->altered(), before);
    EXPECT_EQ(c->parent(), nullptr) << "the bypass slot is still empty";
    EXPECT_EQ(c->chainHeight(), 0);
    b->setBypassParent(3);
    EXPECT_EQ(c->parent(), a.get());
    EXPECT_EQ(c->chainHeight(), 1);
    EXPECT_EQ(stubborn->parent(), b.get());
    b->setEnabled(true);
    EXPECT_EQ(c->chainHeight(), 2);

    const auto fixed = makeRef<TestLink>(std::uint32_t{AlteredPixels});
    EXPECT_EQ(fixed->setEnabled(false), ImageNotAllowed);
    EXPECT_TRUE(fixed->isEnabled());
}

TEST(IlLink, ParentsAreHeldAndCounted) {
    const std::size_t before = liveLinkCount();
    {
        const auto child = makeRef<TestLink>();
        auto parent = makeRef<TestLink>();
        EXPECT_EQ(child->maxParentSlot(), -1);
        child->setParent(parent.get(), 2);
        EXPECT_EQ(child->setParent(parent.get(), 2), ImageOk);
        child->addParent(parent.get());
        child->addParent(nullptr);
        EXPECT_EQ(parent->refCount(), 3u);
        EXPECT_EQ(parent->childCount(), 2);
        EXPECT_EQ(child->parentCount(), 3);
        EXPECT_EQ(child->parent(1), nullptr);
        EXPECT_EQ(child->removeParentSlot(1), ImageNoSuchParent);
        EXPECT_EQ(child->setParent(parent.get(), -1), ImageNoSuchParent);
        EXPECT_EQ(child->removeParent(nullptr), ImageOk);
        EXPECT_EQ(child->removeParent(nullptr), ImageNoSuchParent);
        EXPECT_EQ(child->removeParentSlot(2), ImageOk);
        EXPECT_EQ(parent->childCount(), 1);
        EXPECT_EQ(child->chainHeight(), 1);
        parent.reset();
        EXPECT_EQ(liveLinkCount(), before + 2);
        const auto next = makeRef<TestLink>();
        const auto links = liveLinks();
        EXPECT_NE(std::find(links.begin(), links.end(), next.get()), links.end());
    }
    EXPECT_EQ(liveLinkCount(), before);
}

TEST(IlLink, TraceReports) {
    auto old = makeRef<TestLink>();
    {
        Reports reports(TraceDestruction | TraceChanges);
        auto link = makeRef<TestLink>();
        link->setAltered(AlteredFill | NotifyOnly);
        EXPECT_EQ(reports.codes(), "") << "not traced yet";
        link->setTraced(true);
        link->setAltered(AlteredFill | NotifyOnly);
        EXPECT_EQ(reports.codes(), "a");
        link->setAltered(AlteredFill);
        link->setAltered(AlteredFill | NotifyOnly);
        EXPECT_EQ(reports.codes(), "a") << "stale already";
        link->markForTrace();
        link->reset();
        EXPECT_EQ(reports.codes(), "ai");
        link->setAltered(AlteredFill);
        link->reset();
        EXPECT_EQ(reports.codes(), "aia") << "the mark is used up";
        link->setTraceFlags(TraceDestruction);
        link->setAltered(AlteredFill);
        link->reset();
        EXPECT_EQ(reports.codes(), "aia");
        ilLink* const address = link.get();
        link.reset();
        EXPECT_EQ(reports.codes(), "aiad");
        EXPECT_EQ(reports.list.back().first, address);
        EXPECT_EQ(old->traceFlags(), 0u);
        setLinkTraceMask(TraceDestruction, TraceScope::AllLinks);
        old.reset();
        EXPECT_EQ(reports.codes(), "aiadd");
    }
    EXPECT_EQ(linkTraceMask(), 0u);
}

// The rules once more over plain indices, without lists, counts or caches.
struct Model {
    struct Node {
        std::uint32_t altered = 0, setFlags = 0, bypass = 0;
        bool enabled = true, noBypass = false;
        int firsts = 0;
        std::vector<std::pair<int, int>> parents;  // slot, node; -1: none
    };
    std::vector<Node> nodes;

    [[nodiscard]] int inSlot(int node, int slot) const {
        for (const auto& [place, parent] : nodes[at(node)].parents) {
            if (place == slot) return parent;
        }
        return -1;
    }
    [[nodiscard]] int resolve(int node, int parent) const {
        if (nodes[at(node)].noBypass || parent < 0 || nodes[at(parent)].enabled) return parent;
        return resolve(parent, inSlot(parent, static_cast<int>(nodes[at(parent)].bypass)));
    }
    [[nodiscard]] int height(int node) const {
        int result = 0;
        for (const auto& entry : nodes[at(node)].parents) {
            const int seen = resolve(node, entry.second);
            if (seen >= 0) result = std::max(result, height(seen) + 1);
        }
        return result;
    }
    void alter(int node, std::uint32_t mask, bool notify, bool keep) {
        Node& n = nodes[at(node)];
        n.setFlags |= mask;
        if (!notify) {
            if (n.altered == 0) ++n.firsts;
            n.altered |= mask;
        }
        if (keep || (n.enabled && (n.altered & 0x40000000) != 0)) return;
        if (n.altered != 0) n.altered |= 0x40000000;
        for (int child = node + 1; child < static_cast<int>(nodes.size()); ++child) {
            if (mask == 2 && nodes[at(child)].noBypass) continue;
            const auto& parents = nodes[at(child)].parents;
            const auto times = std::count_if(parents.begin(), parents.end(),
                                             [&](const auto& p) { return p.second == node; });
            for (auto i = times; i > 0; --i) alter(child, 1, false, false);
        }
    }
    void reset(int node) {
        if ((nodes[at(node)].altered & 0x3FFFFFFF) == 0) return;
        for (const auto& entry : nodes[at(node)].parents) {
            const int seen = resolve(node, entry.second);
            if (seen >= 0) reset(seen);
        }
        nodes[at(node)].altered = 0;
    }
    static std::size_t at(int i) { return static_cast<std::size_t>(i); }
};

TEST(IlLink, RandomGraphsFollowTheRules) {
    constexpr int count = 12;
    const std::size_t before = liveLinkCount();
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto pick = [&](int n) { return static_cast<int>(random() % unsigned(n)); };
        Model model;
        std::vector<Ref<TestLink>> links;
        for (int i = 0; i < count; ++i) {
            links.push_back(makeRef<TestLink>());
            model.nodes.emplace_back();
            model.nodes.back().noBypass = pick(5) == 0;
            links.back()->setNoBypass(model.nodes.back().noBypass);
        }
        for (int step = 0; step < 400; ++step) {
            const int node = pick(count);
            TestLink& link = *links[Model::at(node)];
            auto& n = model.nodes[Model::at(node)];
            const int parent = node > 0 && pick(8) != 0 ? pick(node) : -1;
            ilLink* const target = parent < 0 ? nullptr : links[Model::at(parent)].get();
            const int slot = pick(3);
            const auto inSlot = std::find_if(n.parents.begin(), n.parents.end(),
                                             [&](const auto& p) { return p.first == slot; });
            switch (pick(9)) {
                case 0:
                    if (n.parents.size() > 4) break;
                    n.parents.emplace_back(-1, parent);
                    model.alter(node, 1, false, false);
                    ASSERT_EQ(link.addParent(target), 0);
                    break;
                case 1:
                case 2:
                    ASSERT_EQ(link.setParent(target, slot), 0);
                    if (inSlot == n.parents.end()) {
                        n.parents.emplace_back(slot, parent);
                    } else if (inSlot->second == parent) {
                        break;
                    } else {
                        inSlot->second = parent;
                    }
                    model.alter(node, 1, false, false);
                    break;
                case 3: {
                    const bool known = inSlot != n.parents.end();
                    if (known) n.parents.erase(inSlot);
                    ASSERT_EQ(link.removeParentSlot(slot), known ? 0 : 25);
                    if (known) model.alter(node, 1, false, false);
                    break;
                }
                case 4: {
                    const auto entry =
                        std::find_if(n.parents.begin(), n.parents.end(),
                                     [&](const auto& p) { return p.second == parent; });
                    const bool known = entry != n.parents.end();
                    if (known) n.parents.erase(entry);
                    ASSERT_EQ(link.removeParent(target), known ? 0 : 25);
                    if (known) model.alter(node, 1, false, false);
                    break;
                }
                case 5:
                    ASSERT_EQ(link.setEnabled(!n.enabled), 0);
                    n.enabled = !n.enabled;
                    if (n.enabled) model.reset(node);
                    model.alter(node, 2, true, false);
                    break;
                case 6:
                    n.bypass = static_cast<std::uint32_t>(slot);
                    link.setBypassParent(n.bypass);
                    if (!n.enabled) model.alter(node, 1, true, false);
                    break;
                case 7: {
                    const std::uint32_t mask = 1u << pick(18);
                    const bool notify = pick(4) == 0;
                    const bool keep = pick(4) == 0;
                    model.alter(node, mask, notify, keep);
                    ASSERT_EQ(link.setAltered(mask | (notify ? 0x40000000u : 0u) |
                                              (keep ? 0x20000000u : 0u)),
                              0);
                    break;
                }
                default:
                    model.reset(node);
                    ASSERT_EQ(link.chainHeight(), model.height(node)) << "node " << node;
                    break;
            }
            for (int i = 0; i < count; ++i) {
                const TestLink& l = *links[Model::at(i)];
                const auto& m = model.nodes[Model::at(i)];
                ASSERT_EQ(l.altered(), m.altered) << "step " << step << " node " << i;
                ASSERT_EQ(l.setFlags(), m.setFlags) << "step " << step << " node " << i;
                ASSERT_EQ(l.firstAlterations, m.firsts) << "step " << step << " node " << i;
                ASSERT_EQ(l.parent(slot), [&]() -> ilLink* {
                    const int seen = model.resolve(i, model.inSlot(i, slot));
                    return seen < 0 ? nullptr : links[Model::at(seen)].get();
                }());
            }
        }
        // In any order: whoever is still needed stays.
        std::shuffle(links.begin(), links.end(), random);
    }
    EXPECT_EQ(liveLinkCount(), before);
}

}  // namespace
}  // namespace brushwork
