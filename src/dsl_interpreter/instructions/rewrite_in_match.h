// Whether one body arises from another by replacing instances of a rule, outside of all binders in it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "dsl_interpreter/instructions/rewrite_in_rule.h"

namespace vetro {

// True when to is from with source replaced by target at *hits places, perhaps none; the places are added to hits.
// Where that does not give `to` as it is written, what static analysis makes of it may.
bool match_body_rewrite_no_nested_limit(term_ptr from, term_ptr to, const rewrite_sides& sides, std::size_t& hits);

// What makes a place look like a use of the rule: its source in the old form where the two forms differ (the target may
// be written another way), or both sides in the two forms.
enum class instance_evidence : std::uint8_t { source, both_sides };

// The value of the rule's variable at the first place that looks like a use of a rule with these sides; null when there
// is none.
term_ptr find_rule_instance_no_nested_limit(term_ptr from, term_ptr to, const rewrite_sides& pattern, term_ptr qvar,
                                            instance_evidence evidence);

// Whether the source of the rule may stand somewhere in the body, outside of what is closed to rewriting. May say yes
// too often, and does not depend on how bound variables are called.
bool source_may_stand_in(term_ptr body, term_ptr source, term_ptr qvar);

// alpha_equivalent where both are there, else whether both are missing.
bool rewrite_in_alpha_eqb(term_ptr a, term_ptr b);

// Whether two nodes carry the same side condition, or none.
bool have_equal_scopes(term_ptr a, term_ptr b);

}  // namespace vetro
