#include "CameraModels.h"

#include <array>

namespace {

using bw::MODEL;

// clang-format off
//  code                opening                       imu    mag    baro   temps  micro-controller    mesh
constexpr std::array<ModelInfo, 8> kModels{{
    {MODEL::ORYX,        Opening::NEVER,               false, false, false, false, 0,                  CameraMesh::ORYX},
    {MODEL::ORYX_B,      Opening::BY_SERIAL,           true,  false, false, false, bw::MCU_PID_ORYX_B, CameraMesh::ORYX_B},
    {MODEL::ORYX_C,      Opening::BY_SERIAL,           true,  true,  true,  true,  bw::MCU_PID_ORYX_C, CameraMesh::ORYX_C},
    {MODEL::ORYX_D,      Opening::BY_SERIAL,           true,  true,  true,  true,  bw::MCU_PID_ORYX_D, CameraMesh::ORYX_C},
    {MODEL::ORYX_E,      Opening::BY_ID,               true,  false, false, true,  0,                  CameraMesh::ORYX_C},
    {MODEL::ORYX_F,      Opening::BY_ID,               true,  false, false, true,  0,                  CameraMesh::ORYX_C},
    {MODEL::ORYX_SOLO_A, Opening::BY_ID_SINGLE_SENSOR, true,  true,  true,  true,  0,                  CameraMesh::ORYX_C},
    {MODEL::ORYX_SOLO_B, Opening::BY_ID_SINGLE_SENSOR, true,  true,  true,  true,  0,                  CameraMesh::ORYX_C},
}};
// clang-format on

constexpr unsigned kSerialModelDivisor = 10'000'000;

}  // namespace

ModelInfo modelInfo(unsigned code) {
    for (const ModelInfo& info : kModels)
        if (unsigned(info.code) == code) return info;
    // Outside the family: listed nowhere, opened never, drawn with the common mesh.
    return {MODEL(code), Opening::NEVER, false, false, false, false, 0, CameraMesh::ORYX_C};
}

bw::MODEL modelFromSerial(unsigned serial) { return MODEL(serial / kSerialModelDivisor); }

ModelInfo modelWithMicroController(unsigned short productId) {
    for (const ModelInfo& info : kModels)
        if (productId != 0 && info.microControllerProductId == productId) return info;
    return modelInfo(~0u);
}
