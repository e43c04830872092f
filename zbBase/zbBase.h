// Umbrella header of the zbBase library: includes every public header.
#pragma once

#include "zbBase/numeric/zbExport.h"
#include "zbBase/platform/zbPlatformTypes.h"

#include "zbBase/numeric/CzbBit.h"
#include "zbBase/numeric/CzbDE.h"
#include "zbBase/numeric/CzbInterpolation.h"
#include "zbBase/numeric/CzbMath.h"
#include "zbBase/numeric/CzbMatrix4x4.h"
#include "zbBase/numeric/CzbRandom.h"
#include "zbBase/numeric/zbVector.h"

#include "zbBase/geodesy/CzbCoordinate.h"
#include "zbBase/geodesy/CzbWGS84.h"

#include "zbBase/simulation/CzbSyncObject.h"
#include "zbBase/simulation/CzbTimeManager.h"
#include "zbBase/simulation/CzbTimeManagerAdv.h"
#include "zbBase/simulation/CzbTrajcetoryModel.h"
#include "zbBase/simulation/CzbWaypoint.h"

#include "zbBase/datafiles/CzbFileDB.h"
#include "zbBase/datafiles/CzbFileMgr.h"
#include "zbBase/datafiles/CzbFileMgrAdv.h"
#include "zbBase/datafiles/CzbFileMgrB.h"
#include "zbBase/datafiles/CzbStringT.h"

#include "zbBase/filesystem/CzbFileUtil.h"
#include "zbBase/filesystem/zbPathFileUtil.h"

#include "zbBase/diagnostics/CzbLogger.h"
#include "zbBase/diagnostics/CzbString.h"
#include "zbBase/diagnostics/CzbText.h"
#include "zbBase/diagnostics/CzbTrace.h"
