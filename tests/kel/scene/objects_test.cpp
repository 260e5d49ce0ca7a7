#include "kel/scene/objects.h"

#include <doctest/doctest.h>

namespace kel {

TEST_CASE("Ids ascend from 1 and are never used again") {
    Objects objects;
    const ObjectId first = objects.Add(CameraObject{});
    const ObjectId second = objects.Add(SceneObject{});
    objects.Remove(second);
    CHECK_EQ(first, 1);
    CHECK_EQ(second, 2);
    CHECK_EQ(objects.Add(SceneObject{}), 3);
}

TEST_CASE("An object is found under its own kind alone, until it is removed") {
    Objects objects;
    const ObjectId id = objects.Add(TextureObject{});
    CHECK(objects.Find<TextureObject>(id) != nullptr);
    CHECK(objects.Find<ImageObject>(id) == nullptr);
    CHECK(objects.Contains(id));
    objects.Remove(id);
    CHECK(objects.Find<TextureObject>(id) == nullptr);
    CHECK_FALSE(objects.Contains(id));
}

TEST_CASE("No object has the id -1 or 0") {
    Objects objects;
    objects.Add(CameraObject{});
    CHECK_FALSE(objects.Contains(noObject));
    CHECK_FALSE(objects.Contains(0));
}

TEST_CASE("Objects of a kind come in the order in which they were added") {
    Objects objects;
    std::vector<ObjectId> added;
    for (int i = 0; i < 3; ++i) {
        added.push_back(objects.Add(ContainerObject{}));
        objects.Add(TextureObject{});
    }
    std::vector<ObjectId> seen;
    objects.ForEach<ContainerObject>([&](ObjectId id, const ContainerObject&) { seen.push_back(id); });
    CHECK_EQ(seen, added);
}

TEST_CASE("Objects may be removed while they are gone through") {
    Objects objects;
    for (int i = 0; i < 4; ++i) objects.Add(CameraObject{});
    int seen = 0;
    objects.ForEach<CameraObject>([&](ObjectId id, const CameraObject&) {
        ++seen;
        objects.Remove(id);
        objects.Remove(id + 1);
    });
    CHECK_EQ(seen, 2);
}

TEST_CASE("Unit 0 of a container shows its picture until a module puts a texture there") {
    ContainerObject container;
    container.picture = 5;
    CHECK_EQ(container.TextureOn(0), 5);
    CHECK_EQ(container.TextureOn(1), noObject);
    container.multiTextures[0] = 8;
    CHECK_EQ(container.TextureOn(0), 8);
}

}  // namespace kel
