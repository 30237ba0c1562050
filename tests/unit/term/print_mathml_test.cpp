// Formulas as MathML: every operator with any number of arguments gives well-formed markup that holds each argument
// once, and a table of notations.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/build_terms.h"
#include "term/print/mathml.h"

namespace vetro {
namespace {

using build::app;
using build::chain;
using build::list;
using build::num;
using build::quant;
using build::var;

// What is wrong with markup that should be one element: tags that do not match, a wrong number of children, bare text.
std::string markup_fault(std::string_view text) {
  const std::map<std::string_view, int> children = {{"mfrac", 2},  {"msup", 2},    {"msub", 2},       {"mroot", 2},
                                                    {"munder", 2}, {"msubsup", 3}, {"munderover", 3}, {"msqrt", 1}};
  std::vector<std::pair<std::string_view, int>> open = {{"", 0}};
  while (!text.empty()) {
    if (text[0] != '<') {
      const std::size_t end = std::min(text.find('<'), text.size());
      const std::string_view holder = open.back().first;
      if (holder != "mi" && holder != "mo" && holder != "mn" && holder != "mtext") {
        return "text outside of a leaf: " + std::string(text.substr(0, end));
      }
      if (text.substr(0, end).find('>') != std::string_view::npos) {
        return "a bare >";
      }
      text.remove_prefix(end);
      continue;
    }
    const std::size_t end = text.find('>');
    if (end == std::string_view::npos) {
      return "an open tag";
    }
    const std::string_view tag = text.substr(1, end - 1);
    text.remove_prefix(end + 1);
    if (tag[0] != '/') {
      ++open.back().second;
      if (tag.back() != '/') {
        open.emplace_back(tag.substr(0, tag.find(' ')), 0);
      }
      continue;
    }
    const auto [name, count] = open.back();
    open.pop_back();
    if (open.empty() || name != tag.substr(1)) {
      return "unmatched " + std::string(tag);
    }
    if (const auto wanted = children.find(name); wanted != children.end() && wanted->second != count) {
      return std::string(name) + " with " + std::to_string(count) + " children";
    }
  }
  return open.size() != 1 || open[0].second != 1 ? "not one element" : "";
}

std::size_t times_in(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

TEST(print_mathml, keeps_every_argument_of_every_operator) {
  const std::vector<std::string> names = {"va", "vb", "vc", "vd", "ve"};
  for (int number = IntervalLoRo; number <= Iff; ++number) {
    if (number == Vec) {
      continue;
    }
    const term_ptr head = number < PredChain ? mk_oper(static_cast<oper_type>(number))
                          : number < Not     ? mk_pred(static_cast<pred_type>(number))
                                             : mk_connect(static_cast<connect_type>(number));
    for (std::size_t count = 1; count <= names.size(); ++count) {
      for (std::size_t listed = 0; listed <= count; ++listed) {  // the argument that is a list; the last: none
        term_list arguments;
        for (std::size_t i = 0; i < count; ++i) {
          const term_ptr v = var(names[i]);
          arguments.push_back(i == listed ? list({v, var("vx")}) : v);
        }
        const std::string text = print_term_mathml(mk_apply_all(head, arguments));
        // The order of a derivative stands above and below in a fraction of differentials.
        const auto times = [&](std::size_t i) { return number == ValDeri && count > 2 && i == 2 ? 2U : 1U; };
        EXPECT_EQ(markup_fault(text), "") << text;
        for (std::size_t i = 0; i < count; ++i) {
          EXPECT_EQ(times_in(text, "<mi>" + names[i] + "</mi>"), times(i)) << text;
        }
        EXPECT_EQ(times_in(text, "<mi>vx</mi>"), listed < count ? times(listed) : 0U) << text;
        // Signs of the written form that stand for a second dimension.
        EXPECT_EQ(times_in(text, "<mo>^</mo>") + times_in(text, "<mo>_</mo>"), 0U) << text;
      }
    }
  }
}

// The markup without its tags, but for those that set something off the line.
std::string on_paper(term_ptr t) {
  std::string text = print_term_mathml(t);
  EXPECT_EQ(markup_fault(text), "") << text;
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '<') {
      out += text[i];
      continue;
    }
    const std::size_t end = text.find('>', i);
    const std::string tag = text.substr(i + 1, end - i - 1);
    const std::string name = tag.substr(tag[0] == '/' ? 1 : 0, tag.find(' '));
    if (name != "mrow" && name != "mi" && name != "mo" && name != "mn" && name != "mtext" && !tag.starts_with("mo ")) {
      out += tag[0] == '/' ? "}" : name + "{";
    }
    i = end;
  }
  return out;
}

TEST(print_mathml, notation) {
  const term_ptr a = var("a");
  const term_ptr b = var("b");
  const term_ptr f = var("f");
  const term_ptr x = var("x");
  const term_ptr sum = app(Plus, {a, b});
  const term_ptr square = app(Power, {x, num(2)});
  const term_ptr integral = app(DefInt, {num(0), num(1), app(Mult, {x, app(D, {x})})});
  const term_ptr vars[] = {x};
  const auto branch = [](term_ptr value, term_ptr condition) { return app(Tuple, {list({value, condition})}); };
  const std::string times = "\xE2\x81\xA2";
  const std::string of = "\xE2\x81\xA1";
  const std::vector<std::pair<term_ptr, std::string>> cases = {
      {app(Power, {sum, sum}), "msup{(a+b)a+b}"},
      {app(Power, {num(-5), num(2)}), "msup{(−5)2}"},
      {app(Power, {app(Div, {a, b}), num(2)}), "msup{(mfrac{ab})2}"},
      {app(Div, {sum, app(Mult, {a, b})}), "mfrac{a+ba⋅b}"},
      {app(Mult, {num(2), square}), "2" + times + "msup{x2}"},
      {app(Mult, {num(2), num(3)}), "2⋅3"},
      {app(Mult, {a, app(Minus, {a, b})}), "a⋅(a−b)"},
      {app(Minus, {a, num(-1)}), "a−−1"},
      {app(Sqrtn, {num(3), sum}), "mroot{a+b3}"},
      {app(Lt, {a, b}), "a&lt;b"},
      {app(SetMinus, {a, mk_const(PosRealSet)}), "a∖msub{ℝ&gt;0}"},
      {app(Belong, {x, mk_const(NonPosIntegerSet)}), "x∈msub{ℤ≤0}"},
      {app(Belong, {x, mk_const(RationalSet)}), "x∈ℚ"},
      {app(Plus, {app(BigSumSup, {app(Eq, {x, num(1)}), a, sum}), b}), "(munderover{∑x=1a}(a+b))+b"},
      {app(Mult, {integral, a}), "(msubsup{∫01}x⋅dx)⋅a"},
      {app(LeftLim, {x, num(0), app(f, {x})}), "munder{limx→msup{0−}}f" + of + "(x)"},
      {app(SingleDeri, {app(SingleDeri, {f}), x}), "msup{msup{f′}′}" + of + "(x)"},
      {app(SingleDeri, {square}), "msup{(msup{x2})′}"},
      {app(app(Div, {a, b}), {x}), "(mfrac{ab})" + of + "(x)"},
      {app(FunDeri, {f, num(1), num(1), a}), "msup{f′}" + of + "(a)"},
      {app(FunDeri, {f, num(1), num(2), a}), "msup{f(2)}" + of + "(a)"},
      {app(FunDeri, {f, num(1), a}), "msubsup{∂1a}f"},
      {app(FunDeri, {mk_lambda(vars, {}, nullptr, x), num(1), num(1)}), "msup{((x:ℝ)↦x)′}"},
      {app(FunDeri, {app(FunDeri, {f, num(1), num(1)}), num(2), num(3), a, b}), "msubsup{∂23}msub{∂1}f" + of + "(a,b)"},
      {app(ValDeri, {square, x, num(1), num(3)}), "msub{mfrac{ddx}msup{x2}|3}"},
      {app(ValDeri, {sum, x, num(2)}), "mfrac{msup{d2}dmsup{x2}}(a+b)"},
      {app(Frac, {a, b, x}), "mfrac{ab}" + of + "(x)"},
      {chain({mk_pred(Lt), mk_pred(Le)}, {a, b, x}), "a&lt;b≤x"},
      {app(PiecewiseFunc, {list({branch(a, app(Gt, {x, num(0)})), b})}),
       "{mtable{mtr{mtd{a}mtd{if&#160;x&gt;0}}mtr{mtd{b}mtd{otherwise}}}"},
      {quant(Forall, {x, app(Gt, {a, num(0)})}, app(Eq, {x, x})), "∀x,(a&gt;0):x=x"},
      {quant(ExistsUnique, {x}, app(Eq, {x, x})), "∃!x:x=x"},
      {mk_lambda(vars, {}, app(Gt, {x, num(0)}), square), "(x:ℝ|x&gt;0)↦msup{x2}"},
      {app(mk_lambda(vars, {}, nullptr, x), {a}), "((x:ℝ)↦x)" + of + "(a)"},
      {mk_free_var_tag(vars, sum), "[free&#160;x]a+b"},
      {with_scope(sum, app(Gt, {a, num(0)})), "a+b[where&#160;a&gt;0]"},
      {var("a<b&"), "`a&lt;b&amp;`"},
  };
  for (const auto& [t, text] : cases) {
    EXPECT_EQ(on_paper(t), text);
  }
}

TEST(print_mathml, leaves_out_what_no_browser_shows) {
  term_ptr deep = var("x");
  for (std::uint32_t i = 0; i <= mathml_most_depth; ++i) {
    deep = app(Sin, {deep});
  }
  EXPECT_EQ(print_term_mathml(deep), "");
  EXPECT_EQ(print_term_mathml(nullptr), "");
}

}  // namespace
}  // namespace vetro
