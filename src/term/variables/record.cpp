// Both terms in step; the names of quantifiers and functions on the way tell how a record is to be renamed.
#include "term/variables/record.h"

#include <algorithm>
#include <unordered_map>

#include "term/compare.h"
#include "term/variables/binding.h"
#include "term/walk_tools.h"

namespace vetro {
namespace {

class record_transfer {
 public:
  // Null where the two are not written alike.
  term_ptr transfer(term_ptr written, term_ptr stored) {
    if (written == stored) {
      return written;
    }
    if (written->type() != stored->type() || written->children().size() != stored->children().size() ||
        (written->scope() == nullptr) != (stored->scope() == nullptr)) {
      return nullptr;
    }
    const visit key{stored_names_.number(), written, stored};
    if (const auto found = done_.find(key); found != done_.end()) {
      return found->second;
    }
    const term_ptr result = transfer_node(written, stored);
    done_.emplace(key, result);
    return result;
  }

 private:
  struct visit {
    std::uint64_t number;
    term_ptr written;
    term_ptr stored;
    bool operator==(const visit&) const = default;
  };
  struct visit_hasher {
    std::size_t operator()(const visit& v) const {
      return static_cast<std::size_t>((v.written->hash() * 0x9e3779b97f4a7c15ULL) ^ v.stored->hash() ^ v.number);
    }
  };

  term_ptr transfer_node(term_ptr written, term_ptr stored) {
    const bound_names::mark outside = stored_names_.here();
    if (written->type() == Lambda || written->type() == Quant) {
      bind_entries(written->vars(), stored->vars());
    }
    term_list parts;
    bool alike = true;
    for (std::size_t i = 0; alike && i < written->children().size(); ++i) {
      const term_ptr part = written->children()[i];
      const term_ptr other = stored->children()[i];
      if (part == nullptr || other == nullptr) {
        alike = part == other;
        parts.push_back(nullptr);
      } else {
        parts.push_back(transfer(part, other));
        alike = parts.back() != nullptr;
      }
    }
    stored_names_.leave(outside);
    written_names_.resize(outside.count);
    return alike ? with_record(rebuilt(written, parts), stored) : nullptr;
  }

  void bind_entries(term_span written, term_span stored) {
    for (std::size_t i = 0; i < written.size() && i < stored.size(); ++i) {
      if (is_var(written[i]) && is_var(stored[i])) {
        stored_names_.bind(stored[i]);
        written_names_.push_back(written[i]->bare());
      }
    }
  }

  static term_ptr rebuilt(term_ptr t, const term_list& parts) {
    if (std::equal(parts.begin(), parts.end(), t->children().begin())) {
      return t;
    }
    const term_span all(parts);
    term_ptr content = nullptr;
    switch (t->type()) {
      case Apply:
        content = mk_apply(parts[0], parts[1]);
        break;
      case TermList:
        content = mk_term_list(parts);
        break;
      case Lambda:
        content = mk_lambda(all.subspan(2), t->var_types(), parts[0], parts[1]);
        break;
      case Quant:
        content = mk_quant(t->quant(), all.subspan(1), parts[0]);
        break;
      default:
        content = mk_free_var_tag(all.subspan(1), parts[0]);
        break;
    }
    return with_meta(content, t->meta());
  }

  term_ptr with_record(term_ptr written, term_ptr stored) const {
    if (stored->binders().empty() && stored->guarded().empty()) {
      return written;
    }
    const binding own(written);
    const binding other(stored);
    if (own.row() != other.row() || own.row() == nullptr || own.indices().size() == other.indices().size()) {
      return written;
    }
    return with_binding(written, renamed(stored->binders()), renamed(stored->guarded()));
  }

  term_list renamed(const term_list& names) const {
    term_list result;
    for (term_ptr name : names) {
      const int bound = stored_names_.newest(name);
      result.push_back(bound == bound_names::unbound ? name : written_names_[static_cast<std::size_t>(bound)]);
    }
    return result;
  }

  bound_names stored_names_;
  term_list written_names_;  // at the same positions
  std::unordered_map<visit, term_ptr, visit_hasher> done_;
};

}  // namespace

term_ptr with_record_of(term_ptr written, term_ptr stored) {
  if (written == nullptr || stored == nullptr || term_eqb(written, stored)) {
    return written;
  }
  const term_ptr result = record_transfer().transfer(written, stored);
  return result != nullptr && term_eqb(result, stored) ? result : written;
}

}  // namespace vetro
