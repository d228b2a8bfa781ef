// The rules for every object of the component library: creation, reference counts, and the entries of the table that
// have no operation.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "KV_Components/Hps.h"
#include "KV_Components/Image.h"
#include "KV_Components/Object.h"

namespace {

using namespace KvComponents;

class StartedRegistry {
public:
    StartedRegistry() { KV_Components_Ordinal1(); }
    ~StartedRegistry() { KV_Components_Ordinal3(); }
    StartedRegistry(const StartedRegistry&) = delete;
    StartedRegistry& operator=(const StartedRegistry&) = delete;
};

bool GivesObjects() {
    Object* const object = KV_Components_Ordinal2(image::kFactory);
    if (object != nullptr) kRelease(object);
    return object != nullptr;
}

TEST(Registry, ReturnsNullBeforeItsStartAndAfterItsStop) {
    EXPECT_FALSE(GivesObjects());
    KV_Components_Ordinal1();
    EXPECT_TRUE(GivesObjects());
    KV_Components_Ordinal3();
    EXPECT_FALSE(GivesObjects());
}

TEST(Registry, StopsWhenEachStartHasHadItsStop) {
    KV_Components_Ordinal1();
    KV_Components_Ordinal1();
    KV_Components_Ordinal3();
    EXPECT_TRUE(GivesObjects());
    KV_Components_Ordinal3();
    EXPECT_FALSE(GivesObjects());
}

TEST(Registry, IgnoresAStopWithoutAStart) {
    KV_Components_Ordinal3();
    KV_Components_Ordinal3();
    KV_Components_Ordinal1();
    EXPECT_TRUE(GivesObjects());
    KV_Components_Ordinal3();
    EXPECT_FALSE(GivesObjects());
}

TEST(Registry, ReturnsNullForAnUnknownGuid) {
    const StartedRegistry started;
    EXPECT_EQ(KV_Components_Ordinal2(nullptr), nullptr);
    const std::string guid = image::kFactory;
    for (const std::string& other : {std::string(), guid.substr(0, 37), guid + " ", guid.substr(1, 36),
                                     std::string("{00000000-0000-0000-0000-000000000000}"),
                                     std::string(image::kInterface), std::string(hps_mesh_source::kInterface)})
        EXPECT_EQ(KV_Components_Ordinal2(other.c_str()), nullptr) << other;
    EXPECT_EQ(Component::LiveCount(), 0);
}

TEST(Registry, StopKeepsObjectsThatAreStillReferenced) {
    KV_Components_Ordinal1();
    Object* const object = KV_Components_Ordinal2(image::kFactory);
    ASSERT_NE(object, nullptr);
    KV_Components_Ordinal3();
    EXPECT_EQ(image::kSetSize(object, 1, 1), kSucceeded);
    kRelease(object);
    EXPECT_EQ(Component::LiveCount(), 0);
}

struct Kind {
    const char* name;
    const char* factory;
    const char* interfaceId;
    std::set<std::size_t> positions;  ///< of its operations, without those of every object
};
void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }

// The positions of the binary interface, written down independently of its headers.
const Kind kKinds[] = {
    {"Image",
     "{312F34D3-886E-4DEB-8B33-D8F9B923D637}",
     "{173B804A-A48B-49A5-8B22-75ABB6FDE390}",
     {8, 9, 11, 12, 30, 34}},
    {"HpsReader",
     "{281FE1B6-B8EB-4F98-A5E1-F5F1AA09D0C6}",
     "{1CE01B36-C9C0-4039-8A48-4B97610DB225}",
     {8, 10, 15, 16, 17, 18, 19, 20, 22, 23}},
    {"HpsMesh",
     "{60CDEB75-8E34-4E7F-AF4F-35003727680E}",
     "{187AE259-0EB8-4BE5-831D-E136B69998B8}",
     {8, 10, 11, 17, 18, 20, 21, 34}},
    {"HpsMeshSource", "{60CDEB75-8E34-4E7F-AF4F-35003727680E}", "{CB1DE91B-E204-4299-964C-FBCCA348C49D}", {8}},
    {"HpsUvDecoder", "{FA4A0221-DF47-4EC5-8286-A772E67EF31A}", "{5BCC9B77-54EF-4DCC-A1C1-6DE7CDFC8C5F}", {9, 10}},
    {"HpsFileWriter",
     "{103A4F7C-49B2-406F-A682-7E19869B8B88}",
     "{672883FC-ECA9-46FC-8174-43E8428F1E92}",
     {8, 11, 17, 18, 24, 28, 29}},
    {"HpsCompressor", "{A3FEFC16-AE54-4897-8237-2CF46870A76E}", "{CC8052A0-62B2-4F02-BE8A-1150B11E23A4}", {8, 18}},
    {"HeightHistogram",
     "{9D7D1BCB-F55C-4D00-9793-96553FE8F32E}",
     "{A488E12A-7826-4533-B915-E74C87221D49}",
     {8, 9, 10, 14, 15, 17, 18, 19, 20, 23}},
    {"PointCloud",
     "{C80FC412-6A36-405F-B0EE-3455714BBD76}",
     "{802B0301-F1E0-46BB-8361-DFE3BB454407}",
     {4, 10, 14, 17, 28}},
    {"NeighbourSearch", "{8B99E47F-1592-48DF-969E-112FADD993AB}", "{8DCA7665-4C2A-42D6-A65E-0BD82D4593B1}", {8, 10}},
    {"NormalEstimator",
     "{F9D07468-C253-40CC-9985-4424C52D1BC4}",
     "{AFE1ED7C-0C63-4ADA-93D0-ED22CF75F839}",
     {8, 16, 20}},
};

/// Calls every entry that is not at @p positions, and checks that those at @p positions are other functions.
void ExpectNothingElse(Object* object, const std::set<std::size_t>& positions) {
    const auto unlisted = [&](std::size_t position) { return !positions.contains(position); };
    std::set<Object::Entry> notImplemented;
    for (std::size_t position = 3; position < kTableSize; ++position) {
        if (!unlisted(position)) continue;
        EXPECT_EQ((Operation<std::int32_t()>{position}(object)), -5) << position;
        notImplemented.insert(object->m_pOperations[position]);
    }
    EXPECT_EQ(notImplemented.size(), 1u);
    for (const std::size_t position : positions)
        EXPECT_FALSE(notImplemented.contains(object->m_pOperations[position])) << position;
}

class EveryObject : public testing::TestWithParam<Kind> {
protected:
    EveryObject() { EXPECT_EQ(Component::LiveCount(), 0); }
    ~EveryObject() override { EXPECT_EQ(Component::LiveCount(), 0); }

    [[nodiscard]] static Object* Factory() { return KV_Components_Ordinal2(GetParam().factory); }

    const StartedRegistry m_started;
};

INSTANTIATE_TEST_SUITE_P(Kinds, EveryObject, testing::ValuesIn(kKinds), [](const auto& row) { return row.param.name; });

TEST_P(EveryObject, OutlivesTheReferenceThatTheFactoryReturned) {
    Object* const factory = Factory();
    ASSERT_NE(factory, nullptr);
    EXPECT_EQ(Component::LiveCount(), 1);
    Object* found = nullptr;
    EXPECT_EQ(kQuery(factory, GetParam().interfaceId, &found), 1);
    ASSERT_NE(found, nullptr);
    kRelease(factory);
    EXPECT_EQ(Component::LiveCount(), 1) << "the interface has a reference";
    kRelease(found);
}

TEST_P(EveryObject, IsDestroyedWithItsLastReference) {
    Object* const object = Factory();
    ASSERT_NE(object, nullptr);
    kAddReference(object);
    kAddReference(object);
    kRelease(object);
    kRelease(object);
    EXPECT_EQ(Component::LiveCount(), 1);
    kRelease(object);
    EXPECT_EQ(Component::LiveCount(), 0);
}

TEST_P(EveryObject, FailsAWrongQueryWithoutAddingAReference) {
    Object* const object = Factory();
    ASSERT_NE(object, nullptr);
    for (const char* guid : {"", "{00000000-0000-0000-0000-000000000000}", GetParam().factory}) {
        Object* found = object;
        EXPECT_EQ(kQuery(object, guid, &found), -3) << guid;
        EXPECT_EQ(found, nullptr);
    }
    Object* found = object;
    EXPECT_EQ(kQuery(object, nullptr, &found), -4);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(kQuery(object, GetParam().interfaceId, nullptr), -4);
    kRelease(object);
}

TEST_P(EveryObject, ReturnsNotImplementedAtEveryUnusedPosition) {
    Object* const object = Factory();
    ASSERT_NE(object, nullptr);
    Object* found = nullptr;
    ASSERT_EQ(kQuery(object, GetParam().interfaceId, &found), 1);
    ExpectNothingElse(found, GetParam().positions);
    kRelease(found);
    kRelease(object);
}

TEST(HpsVertexData, ReturnsNotImplementedAtEveryUnusedPosition) {
    const StartedRegistry started;
    Object* const mesh = KV_Components_Ordinal2(hps_mesh::kFactory);
    ASSERT_NE(mesh, nullptr);
    ASSERT_EQ(hps_mesh::kCreate(mesh, 3, 1, "P"), 1);
    Object* data = nullptr;
    ASSERT_EQ(hps_mesh::kWritableVertexData(mesh, &data), 1);
    ExpectNothingElse(data, {5, 23, 24});
    hps_vertex_data::kEndAccess(data);
    kRelease(data);
    kRelease(mesh);
    EXPECT_EQ(Component::LiveCount(), 0);
}

/// A component with one operation, which throws.
class Thrower final : public Component {
public:
    Interface* FindInterface(std::string_view) override { return nullptr; }
    Interface* MainInterface() override { return &m_interface; }
    std::int32_t Throw(std::int32_t kind) {
        if (kind == 0) throw std::bad_alloc();
        if (kind == 1) throw 5;
        return kind;
    }
    static const Object::Entry* Operations() {
        static const OperationTable table =
            OperationTable().Set<&Thrower::Throw>(Operation<std::int32_t(std::int32_t)>{7});
        return table.Entries();
    }
    Interface m_interface{Operations(), this};
};

TEST(Operation, ReturnsMinusTwoForAnyException) {
    auto* const thrower = new Thrower;
    const Operation<std::int32_t(std::int32_t)> operation{7};
    EXPECT_EQ(operation(thrower->MainInterface(), 0), -2);
    EXPECT_EQ(operation(thrower->MainInterface(), 1), -2);
    EXPECT_EQ(operation(thrower->MainInterface(), 42), 42);
    kRelease(thrower->MainInterface());
    EXPECT_EQ(Component::LiveCount(), 0);
}

}  // namespace
