// Umbrella header of the zbBase library: includes every public header.
#pragma once

#include "zbBase/numeric/zbExport.h"
#include "zbBase/platform/zbPlatformTypes.h"

#include "zbBase/numeric/CzbBit.h"
#include "zbBase/numeric/CzbDE.h"
#include "zbBase/numeric/CzbRandom.h"
#include "zbBase/numeric/zbVector.h"

#include "zbBase/filesystem/CzbFileUtil.h"
#include "zbBase/filesystem/zbPathFileUtil.h"
