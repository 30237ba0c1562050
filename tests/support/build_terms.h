// Short forms for building the terms of a test.
#pragma once

#include <initializer_list>
#include <string_view>

#include "term/ast.h"

namespace vetro::build {

inline term_ptr var(std::string_view name) { return mk_var(name); }
inline term_ptr num(int value) { return mk_integer(value); }
inline term_ptr list(std::initializer_list<term_ptr> elements) {
  return mk_term_list(term_span(elements.begin(), elements.size()));
}
inline term_ptr app(term_ptr head, std::initializer_list<term_ptr> arguments) {
  return mk_apply_all(head, term_span(arguments.begin(), arguments.size()));
}
inline term_ptr app(oper_type head, std::initializer_list<term_ptr> arguments) { return app(mk_oper(head), arguments); }
inline term_ptr app(pred_type head, std::initializer_list<term_ptr> arguments) { return app(mk_pred(head), arguments); }
inline term_ptr app(connect_type head, std::initializer_list<term_ptr> arguments) {
  return app(mk_connect(head), arguments);
}
inline term_ptr chain(std::initializer_list<term_ptr> predicates, std::initializer_list<term_ptr> operands) {
  return app(PredChain, {list(predicates), list(operands)});
}
inline term_ptr quant(quant_type kind, std::initializer_list<term_ptr> vars, term_ptr body) {
  return mk_quant(kind, term_span(vars.begin(), vars.size()), body);
}

}  // namespace vetro::build
