// The objects of point statistics as a caller gets and combines them.
#pragma once
#include <gtest/gtest.h>

#include <vector>

#include "KV_Components/ComponentReference.h"
#include "KV_Components/Geometry.h"
#include "KV_Components/ObjectRegistry.h"

namespace GeometryObjects {

using namespace KvComponents;

constexpr std::int32_t kOk = 1, kNo = -1, kWrong = -4;

inline ObjectPointer Make(const char* factory) { return ObjectPointer(MakeObject(factory)); }

/// A further reference, to be handed over.
inline Object* Handed(const ObjectPointer& object) {
    kAddReference(object.get());
    return object.get();
}

/// A cloud of points, x, y, z each, that it reads from @p coordinates.
inline ObjectPointer CloudOf(const std::vector<float>& coordinates) {
    ObjectPointer cloud = Make(point_cloud::kFactory);
    const auto count = static_cast<std::int32_t>(coordinates.size() / 3);
    EXPECT_EQ(point_cloud::kSetFormat(cloud.get(), L"P"), kOk);
    EXPECT_EQ(point_cloud::kSetCount(cloud.get(), count), kOk);
    EXPECT_EQ(point_cloud::kSetPoints(cloud.get(), coordinates.data(), 12, count), kOk);
    return cloud;
}

inline ObjectPointer SearchIn(const ObjectPointer& cloud) {
    ObjectPointer search = Make(neighbour_search::kFactory);
    Object* handed = Handed(cloud);
    EXPECT_EQ(neighbour_search::kBuild(search.get(), &handed), kOk);
    return search;
}

/// Checks that no test leaks a component.
class NoLeak : public testing::Test {
protected:
    NoLeak() { EXPECT_EQ(Component::LiveCount(), 0); }
    ~NoLeak() override { EXPECT_EQ(Component::LiveCount(), 0); }
};

}  // namespace GeometryObjects
