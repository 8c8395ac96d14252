#pragma once

// The records that every other room speaks in.
#include "Models/BankMappingDocument.h"
#include "Models/BankNameScheme.h"
#include "Models/BankRecipe.h"
#include "Models/DecodingError.h"
#include "Models/ExportRecords.h"
#include "Models/GenerationError.h"
#include "Models/GenerationMode.h"
#include "Models/SampleRecords.h"
#include "Models/UserFacingDescription.h"
