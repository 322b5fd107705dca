#pragma once
// The car set as JSON, and JSON patches applied to a car set. Names travel as
// UTF-8 and are held as Windows-1252; numbers are the stored values.

#include "carset/CarSetDocument.h"
#include "common/Result.h"

#include <nlohmann/json.hpp>

namespace tarvel::cli {

using Json = nlohmann::ordered_json;

// Every field of the set, in the documented shape ("format": "tarvel-carset").
Json carSetToJson(const CarSetDocument& document);

// Overwrites every field the patch names; arrays of objects match by
// position, absent fields stay. The first value that does not fit its field
// (wrong type, out of range, text too long or not representable in
// Windows-1252, unknown key) refuses the whole patch with "Invalid value for
// <field>." and leaves the document as it was. Marks it dirty when it succeeds.
Status applyCarSetJson(CarSetDocument& document, const Json& patch);

}  // namespace tarvel::cli
