// The table of factories.
#include "ObjectRegistry.h"

#include "KV_Components/Geometry.h"
#include "KV_Components/Hps.h"
#include "KV_Components/Image.h"

namespace KvComponents {

namespace {
struct Factory {
    std::string_view guid;
    Component* (*make)();
};

constexpr Factory kFactories[] = {
    {image::kFactory, &MakeImageObject},
    {hps_reader::kFactory, &MakeHpsReader},
    {hps_mesh::kFactory, &MakeHpsMesh},
    {hps_uv_decoder::kFactory, &MakeHpsUvDecoder},
    {hps_file_writer::kFactory, &MakeHpsFileWriter},
    {hps_compressor::kFactory, &MakeHpsCompressor},
    {height_histogram::kFactory, &MakeHeightHistogram},
    {point_cloud::kFactory, &MakePointCloud},
    {neighbour_search::kFactory, &MakeNeighbourSearch},
    {normal_estimator::kFactory, &MakeNormalEstimator},
};
}  // namespace

Object* MakeObject(std::string_view factoryGuid) {
    for (const Factory& factory : kFactories)
        if (factory.guid == factoryGuid) return factory.make()->MainInterface();
    return nullptr;
}

}  // namespace KvComponents
