// A scene that another unit reads before main.
#pragma once

#include "kelp/scene.h"

/// Read by the constructor of a static object.
extern Kelp::Scene readBeforeMain;
