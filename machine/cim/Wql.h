// The part of WQL that the simulated machine answers:
//   select * | property [, property ...] from class [where condition]
// with conditions of = <> != < > <= >=, is [not] null, and, or, not and parentheses.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "machine/cim/Schema.h"

namespace machine::cim {

struct Condition {
    enum class Kind { kCompare, kIsNull, kAnd, kOr, kNot };

    Kind kind = Kind::kCompare;
    std::string property;
    std::string comparison;  ///< "=", "<>", "<", ">", "<=", ">="
    Value literal;
    std::vector<Condition> parts;
};

struct Query {
    std::vector<std::string> properties;  ///< empty: all
    std::string className;
    std::unique_ptr<Condition> condition;  ///< null: every row
};

/// False when the text is no such query.
bool ParseQuery(std::string_view text, Query& query);

enum class QueryAnswer { kRows, kNoSuchClass, kInvalidQuery };

/// The rows that the machine has, each with the properties asked for.
QueryAnswer RunQuery(const State& state, const Query& query, std::vector<Properties>& rows);

}  // namespace machine::cim
