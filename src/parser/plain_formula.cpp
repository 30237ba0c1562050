// A descent over the tokens of the scanner, one function for each nonterminal of the grammar that it takes part of. It
// only has to tell terms from propositions: how operators bind decides what is built, not what is accepted. Left out is
// whatever can have two readings: bars, scopes, tendencies, and lists with a membership or a quantifier among others.
#include "parser/plain_formula.h"

#include "parser/scanner.h"

namespace vetro {
namespace {

constexpr std::size_t longest_text = 2000;

// What a stretch of the text is. An open proposition has a part that a comma beside it could belong to.
enum class phrase : unsigned char { none, term, prop, open_prop };

bool is_prop(phrase p) { return p == phrase::prop || p == phrase::open_prop; }

class plain_reader {
 public:
  explicit plain_reader(std::string_view text) : context_(text), tokens_(context_) {
    context_.quiet = true;
    take();  // the marker in front of the text
    take();
  }

  bool takes_all() { return item() != phrase::none && token_ == TOK_YYEOF; }

 private:
  void take() { token_ = tokens_.next(value_); }

  bool take_if(int token) {
    const bool there = token_ == token;
    if (there) {
      take();
    }
    return there;
  }

  // ---- Propositions.

  // A term or a proposition, as far as it goes.
  phrase item() {
    phrase whole = part();
    while (token_ == TOK_CONJ || token_ == TOK_DISJ || token_ == TOK_IMPLY || token_ == TOK_EQUIV) {
      take();
      const phrase next = is_prop(whole) ? part() : phrase::none;
      if (!is_prop(next)) {
        return phrase::none;
      }
      whole = whole == phrase::open_prop ? whole : next;
    }
    return whole;
  }

  phrase part() {
    switch (token_) {
      case TOK_NOT: {
        take();
        const phrase denied = part();
        return is_prop(denied) ? denied : phrase::none;
      }
      case TOK_FORALL:
      case TOK_EXISTS:
      case TOK_EXISTS_UNIQUE:
        take();
        return quantified();
      default:
        return relations();
    }
  }

  phrase quantified() {
    do {
      if (!take_if(TOK_LPAREN) || item() == phrase::none || !take_if(TOK_RPAREN)) {
        return phrase::none;
      }
    } while (token_ == TOK_LPAREN);
    return take_if(TOK_COMMA) && is_prop(item()) ? phrase::open_prop : phrase::none;
  }

  // A term with any number of relations behind it; without one also a proposition in parentheses.
  phrase relations() {
    phrase whole = sum();
    for (bool first = true;; first = false) {
      const bool membership = token_ == TOK_BELONG || token_ == TOK_NOT_BELONG || token_ == TOK_SUBSET;
      if (!membership && !is_comparison()) {
        return whole;
      }
      if (first && whole != phrase::term) {
        return phrase::none;
      }
      take();
      if (sum() != phrase::term) {
        return phrase::none;
      }
      whole = membership || whole == phrase::open_prop ? phrase::open_prop : phrase::prop;
    }
  }

  bool is_comparison() const {
    return token_ == TOK_EQ || token_ == TOK_NEQ || token_ == TOK_LT || token_ == TOK_LE || token_ == TOK_GT ||
           token_ == TOK_GE || token_ == TOK_APPRO;
  }

  // ---- Terms.

  bool is_sign() const { return token_ == TOK_PLUS || token_ == TOK_MINUS || token_ == TOK_PLUSMINUS; }

  bool is_operator() const {
    return is_sign() || token_ == TOK_MULT || token_ == TOK_DOTPROD || token_ == TOK_DIV || token_ == TOK_UNION ||
           token_ == TOK_INTER || token_ == TOK_SETDIFF;
  }

  // Operands with operators between them. One operand alone may be a proposition in parentheses.
  phrase sum() {
    const phrase first = operand();
    while (is_operator()) {
      take();
      if (first != phrase::term || operand() != phrase::term) {
        return phrase::none;
      }
    }
    return first;
  }

  bool takes_term() { return sum() == phrase::term; }

  phrase operand() {
    const bool has_sign = is_sign();
    while (is_sign()) {
      take();
    }
    const phrase first = primary();
    if (first != phrase::term) {
      return has_sign ? phrase::none : first;
    }
    return takes_endings() ? phrase::term : phrase::none;
  }

  // Arguments, exponents, subscripts and signs behind a term.
  bool takes_endings() {
    for (;;) {
      switch (token_) {
        case TOK_FACT:
        case TOK_APOSTROPHE:
          take();
          break;
        case TOK_LPAREN:
          take();
          if (!takes_arguments()) {
            return false;
          }
          break;
        case TOK_CARET:
          take();
          if (!takes_exponent()) {
            return false;
          }
          break;
        case TOK_UNDERSCORE:
          take();
          if (!takes_small_part() && !takes_braced_item()) {
            return false;
          }
          break;
        default:
          return true;
      }
    }
  }

  bool takes_exponent() {
    if (take_if(TOK_LBRACE)) {
      return takes_term() && take_if(TOK_RBRACE);
    }
    return take_if(TOK_LPAREN) ? takes_term() && take_if(TOK_RPAREN) : takes_small_part();
  }

  bool takes_small_part() { return take_if(TOK_INTEGER) || take_if(TOK_VAR); }

  bool takes_braced_item() { return take_if(TOK_LBRACE) && item() != phrase::none && take_if(TOK_RBRACE); }

  bool takes_arguments() {
    const phrase first = item();
    phrase last = first;
    while (last != phrase::none && token_ == TOK_COMMA) {
      take();
      last = first == phrase::open_prop ? phrase::none : item();
      last = last == phrase::open_prop ? phrase::none : last;
    }
    return last != phrase::none && take_if(TOK_RPAREN);
  }

  bool takes_terms() {
    do {
      if (!takes_term()) {
        return false;
      }
    } while (take_if(TOK_COMMA));
    return true;
  }

  phrase primary() {
    const int first = token_;
    take();
    switch (first) {
      case TOK_VAR:
      case TOK_QUOTED_VAR:
      case TOK_INTEGER:
      case TOK_DECIMAL:
      case TOK_EMPTYSET:
      case TOK_INFTY:
      case TOK_POS_INFTY:
      case TOK_NEG_INFTY:
        return phrase::term;
      case TOK_LPAREN:
        return in_parentheses();
      case TOK_LBRACE:
        return takes_terms() && take_if(TOK_RBRACE) ? phrase::term : phrase::none;
      case TOK_OPER_SUM:
      case TOK_OPER_PROD:
      case TOK_OPER_UNION:
      case TOK_OPER_INTER:
        return over_an_index();
      case TOK_OPER_LIM:
      case TOK_OPER_LIMSUP:
      case TOK_OPER_LIMINF:
      case TOK_OPER_SEQLIM:
      case TOK_OPER_SEQLIMSUP:
      case TOK_OPER_SEQLIMINF:
        return limit();
      default:
        return phrase::none;
    }
  }

  // Behind the bracket: one item, or the terms of a tuple.
  phrase in_parentheses() {
    const phrase inner = item();
    if (inner == phrase::term && take_if(TOK_COMMA) && !takes_terms()) {
      return phrase::none;
    }
    if (inner == phrase::none || !take_if(TOK_RPAREN)) {
      return phrase::none;
    }
    return inner == phrase::term ? phrase::term : phrase::prop;
  }

  phrase over_an_index() {
    if (!take_if(TOK_UNDERSCORE) || !takes_braced_item()) {
      return phrase::none;
    }
    if (take_if(TOK_CARET) && !(take_if(TOK_LBRACE) && takes_term() && take_if(TOK_RBRACE))) {
      return phrase::none;
    }
    return operands_of_operator();
  }

  phrase limit() {
    const bool read = take_if(TOK_UNDERSCORE) && take_if(TOK_LBRACE) && takes_term() && take_if(TOK_ARROW) &&
                      takes_term() && take_if(TOK_RBRACE);
    return read ? operands_of_operator() : phrase::none;
  }

  phrase operands_of_operator() {
    return take_if(TOK_LPAREN) && takes_terms() && take_if(TOK_RPAREN) ? phrase::term : phrase::none;
  }

  parse_context context_;
  scanner tokens_;
  FORMULA_STYPE value_{};
  int token_ = TOK_YYEOF;
};

}  // namespace

bool is_plain_formula(std::string_view text) { return text.size() <= longest_text && plain_reader(text).takes_all(); }

}  // namespace vetro
