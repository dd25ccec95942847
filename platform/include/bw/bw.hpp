// The whole bw camera API.
#pragma once

#include <bw/Camera.hpp>
#include <bw/ORYXmcu.hpp>
#include <bw/geometry.hpp>
#include <bw/gpu.hpp>
#include <bw/hid.hpp>
#include <bw/sensors.hpp>
#include <bw/types.hpp>
