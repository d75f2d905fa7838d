#pragma once

/// \file
/// All public headers of the engine.

#include "tarn/check_policy.h"
#include "tarn/collision_body.h"
#include "tarn/collision_configuration.h"
#include "tarn/collision_detector.h"
#include "tarn/collision_element.h"
#include "tarn/collision_result.h"
#include "tarn/dump_type.h"
#include "tarn/exception.h"
#include "tarn/export.h"
#include "tarn/factory.h"
#include "tarn/matrix.h"
#include "tarn/proximity_configuration.h"
#include "tarn/proximity_detector.h"
#include "tarn/proximity_outcome.h"
#include "tarn/proximity_result.h"
#include "tarn/proximity_setting.h"
#include "tarn/recorder.h"
#include "tarn/thread_limit.h"
#include "tarn/triangle_data.h"
#include "tarn/triangle_segments.h"
#include "tarn/version.h"
