#pragma once
// Lists of records as JSON arrays, for the records' toJson().

#include <vector>

#include "varnel/platform/Json.h"

namespace varnel::purchase_detail {

template <typename Record>
Json arrayOf(const std::vector<Record>& records) {
  Json array = Json::array();
  for (const auto& record : records) array.push_back(record.toJson());
  return array;
}

}  // namespace varnel::purchase_detail
