#pragma once

// Includes the records and errors that all modules share.
#include "Models/BankMappingDocument.h"
#include "Models/BankNameScheme.h"
#include "Models/BankRecipe.h"
#include "Models/DecodingError.h"
#include "Models/ExportRecords.h"
#include "Models/GenerationError.h"
#include "Models/GenerationMode.h"
#include "Models/SampleRecords.h"
#include "Models/UserFacingDescription.h"
