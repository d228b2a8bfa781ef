// How the viewer calls the component library: texts of status codes, and objects that release themselves.
#include "platform/ComponentRegistry.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "KV_Components/Image.h"

namespace {

namespace image = KvComponents::image;

TEST(GetStatusText, NamesEachStatus) {
    const std::pair<std::int32_t, const char*> texts[] = {
        {1, "the call succeeded"},
        {0, "this is an invalid return value"},
        {-1, "the call failed"},
        {-2, "an exception occurred"},
        {-3, "requested interface not supported"},
        {-4, "an invalid argument was passed to an interface method"},
        {-5, "the method is not implemented"},
        {-6, "the operation has been canceled"},
        {2, "?"},
        {-7, "?"},
        {INT32_MAX, "?"},
        {INT32_MIN, "?"},
    };
    for (const auto& [status, text] : texts) EXPECT_STREQ(GetStatusText(status), text) << status;
}

std::string TextOf(void (*call)()) {
    try {
        call();
        return "nothing was thrown";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

TEST(RequireSuccess, ThrowsTheTextOfEveryStatusButSuccess) {
    EXPECT_NO_THROW(RequireSuccess(1));
    EXPECT_EQ(TextOf([] { RequireSuccess(0); }), "this is an invalid return value");
    EXPECT_EQ(TextOf([] { RequireSuccess(-6); }), "the operation has been canceled");
    EXPECT_EQ(TextOf([] { RequireSuccess(2); }), "?");
}

TEST(RequireComponent, ReportsTheObjectAndAsksWhetherTheRegistryIsStarted) {
    EXPECT_EQ(CreateComponent(image::kFactory, image::kInterface), nullptr);
    EXPECT_EQ(TextOf([] { (void)RequireComponent(image::kFactory, image::kInterface); }),
              "the component library gives no object {312F34D3-886E-4DEB-8B33-D8F9B923D637}: is the registry started "
              "(InitializeKVReg)?");
}

TEST(CreateComponent, ReturnsTheInterfaceOrNull) {
    KV_Components_Ordinal1();
    const ComponentPtr picture = CreateComponent(image::kFactory, image::kInterface);
    ASSERT_TRUE(picture);
    EXPECT_EQ(image::kSetSize(picture.get(), 2, 2), 1);
    EXPECT_EQ(CreateComponent(image::kFactory, "{00000000-0000-0000-0000-000000000000}"), nullptr);
    EXPECT_EQ(CreateComponent("{00000000-0000-0000-0000-000000000000}", image::kInterface), nullptr);
    KV_Components_Ordinal3();
}

/// An object of another library that counts its calls.
struct CountingObject : KvComponents::Object {
    CountingObject() : Object{kOperations} {}

    std::int32_t queryAnswer = 1;
    int queries = 0, releases = 0;

    static std::int32_t Query(KvComponents::Object* object, const char*, KvComponents::Object** out) {
        auto& self = *static_cast<CountingObject*>(object);
        ++self.queries;
        *out = object;  // even when the answer is a failure
        return self.queryAnswer;
    }
    static void AddReference(KvComponents::Object*) {}
    static void Release(KvComponents::Object* object) { ++static_cast<CountingObject*>(object)->releases; }

    static const Entry kOperations[3];
};
const KvComponents::Object::Entry CountingObject::kOperations[3] = {
    reinterpret_cast<Entry>(&CountingObject::Query), reinterpret_cast<Entry>(&CountingObject::AddReference),
    reinterpret_cast<Entry>(&CountingObject::Release)};

TEST(QueryComponent, ReturnsAnInterfaceOnlyWithTheStatusOne) {
    for (const std::int32_t status : {0, -1, -2, -3, -4, -5, -6, 2}) {
        CountingObject object;
        object.queryAnswer = status;
        EXPECT_EQ(QueryComponent(&object, image::kInterface), nullptr) << status;
        EXPECT_EQ(object.queries, 1);
        EXPECT_EQ(object.releases, 0) << status;
    }
    CountingObject object;
    {
        const ComponentPtr found = QueryComponent(&object, image::kInterface);
        EXPECT_EQ(found.get(), &object);
        EXPECT_EQ(object.releases, 0);
    }
    EXPECT_EQ(object.releases, 1);
}

}  // namespace
