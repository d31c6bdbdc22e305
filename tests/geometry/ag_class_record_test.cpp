#include "geometry/ag_class_record.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "geometry/ag_curve.h"

namespace brushwork {
namespace {

// Entry 0 counts, entries carry their numbers: what a caller looks texts up by.
void expectNumbered(AG_MESSAGES table, const char* className, const char* what) {
    ASSERT_FALSE(table.empty());
    const std::string count = std::to_string(table.size() - 1);
    EXPECT_EQ(std::string(table[0]),
              "0: " + count + " (number of valid " + className + " " + what + "() messages)");
    for (std::size_t i = 1; i < table.size(); ++i)
        EXPECT_EQ(std::string(table[i]).rfind(std::to_string(i) + ": ", 0), 0u) << table[i];
    EXPECT_EQ(agMessage(table, 0), nullptr);
    EXPECT_EQ(agMessage(table, -1), nullptr);
    EXPECT_EQ(agMessage(table, static_cast<std::int32_t>(table.size())), nullptr);
}

TEST(ClassRecord, TablesAreNumbered) {
    const struct {
        const AG_CLASS& record;
        std::size_t checks, compares;
    } classes[] = {{agGobClass, 1, 0},   {agObClass, 1, 0},   {agPobClass, 1, 0},
                   {agPob1Class, 1, 0},  {agPob2Class, 1, 0}, {agSplineClass, 31, 12},
                   {agCurveClass, 14, 9}};
    for (const auto& entry : classes) {
        SCOPED_TRACE(entry.record.name);
        expectNumbered(entry.record.checkMessages, entry.record.name, "ag_check");
        expectNumbered(entry.record.compareMessages, entry.record.name, "ag_compare");
        EXPECT_EQ(entry.record.checkMessages.size(), entry.checks + 1);
        EXPECT_EQ(entry.record.compareMessages.size(), entry.compares + 1);
    }
}

TEST(ClassRecord, AbstractClassesAcceptTheirKindOnly) {
    AG_CURVE curve;
    curve.cls = &agCurveClass;
    EXPECT_EQ(agPob1Class.operations.ag_check(&curve), 0);
    EXPECT_EQ(agGobClass.operations.ag_check(&curve), 0);
    EXPECT_EQ(agPob2Class.operations.ag_check(&curve), 1);
    EXPECT_EQ(agPob2Class.operations.ag_check(nullptr), 1);
    AG_CLASS loop = agPob1Class;
    loop.name = "LOOP";
    loop.parent = &loop;
    AG_GOB object{&loop};
    EXPECT_EQ(agPob1Class.operations.ag_check(&object), 1);
}

TEST(ClassRecord, SpoiledRecordsAreAnsweredWithoutACrash) {
    EXPECT_EQ(ag_check(nullptr), 1);
    AG_CLASS record = agCurveClass;
    AG_CURVE curve;
    curve.cls = &record;
    EXPECT_EQ(ag_check(&curve), 2);
    record.name = nullptr;
    EXPECT_EQ(ag_check(&curve), 1);
    EXPECT_EQ(ag_compare(&curve, &curve), -1);
    record.name = "AG_CURVES";
    EXPECT_EQ(ag_check(&curve), 1);
    record.operations = {};
    std::ostringstream out;
    EXPECT_EQ(ag_check(&curve), 1);
    EXPECT_EQ(ag_compare(&curve, &curve), -1);
    EXPECT_FALSE(ag_print(&curve, out));
    EXPECT_EQ(ag_copy(&curve), nullptr);
    AG_SPLINE spline;
    spline.cls = &agSplineClass;
    curve.cls = &agCurveClass;
    EXPECT_EQ(ag_compare(&curve, &spline), -1);
    EXPECT_EQ(ag_compare(&curve, nullptr), -1);
}

}  // namespace
}  // namespace brushwork
