// Umbrella header of the zbBase library: includes every public header.
#pragma once

#include "zbBase/numeric/zbExport.h"
#include "zbBase/platform/zbPlatformTypes.h"

#include "zbBase/numeric/CzbBit.h"
#include "zbBase/numeric/CzbDE.h"
#include "zbBase/numeric/CzbRandom.h"
#include "zbBase/numeric/zbVector.h"

#include "zbBase/datafiles/CzbFileDB.h"
#include "zbBase/datafiles/CzbFileMgr.h"
#include "zbBase/datafiles/CzbFileMgrAdv.h"
#include "zbBase/datafiles/CzbFileMgrB.h"
#include "zbBase/datafiles/CzbStringT.h"
