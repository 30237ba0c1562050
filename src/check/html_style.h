// The style sheet of the pages: one column that fits a phone, colours by the reader's choice of light or dark.
#pragma once

#include <string_view>

namespace vetro {

inline constexpr std::string_view html_style = R"(:root {
  color-scheme: light dark;
  --back: #fbfbfa; --card: #ffffff; --text: #1d2125; --soft: #5b6570; --line: #dcdfe3; --link: #1857b8;
  --good: #1a7340; --warn: #8a5a00; --bad: #b3261e; --bad-back: #fdf0ee; --warn-back: #fdf6e3; --bar: #7aa2d6;
  --time: #c39a5b;
}
@media (prefers-color-scheme: dark) {
  :root {
    --back: #15181b; --card: #1e2226; --text: #e4e7ea; --soft: #a2abb4; --line: #363c42; --link: #8db8f5;
    --good: #6fce94; --warn: #e3b652; --bad: #ff8f85; --bad-back: #35201f; --warn-back: #322a17; --bar: #4f7cb8;
    --time: #9a7a45;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0 auto; padding: 1rem; max-width: 64rem; background: var(--back); color: var(--text);
  font: 1rem/1.5 system-ui, sans-serif; overflow-wrap: anywhere;
}
a { color: var(--link); }
h1 { font-size: 1.4rem; margin: 0.5rem 0; }
h2 { font-size: 1.1rem; margin: 1.6rem 0 0.5rem; }
p { margin: 0.4rem 0; }
code, pre { font-family: ui-monospace, monospace; font-size: 0.9em; }
pre { margin: 0.4rem 0; overflow-x: auto; }
mark { background: none; color: inherit; text-decoration: underline wavy var(--bad); }
.soft { color: var(--soft); font-size: 0.9rem; }
.card, .step { background: var(--card); border: 1px solid var(--line); border-radius: 0.5rem; padding: 0.7rem 1rem; }
.step { margin: 0.7rem 0; }
.inner { margin-left: clamp(0.5rem, 3vw, 2rem); }
.step.failed { border-color: var(--bad); border-left-width: 0.35rem; }
.step > .head { display: flex; flex-wrap: wrap; gap: 0.2rem 0.7rem; align-items: baseline; }
.step > .head > span { max-width: calc(100% - 3rem); }
.step > .head .number { font-weight: 700; }
.said { margin: 0.7rem 0; padding: 0.5rem 0.8rem; border-left: 0.3rem solid var(--warn); background: var(--warn-back); }
.said.error { border-color: var(--bad); background: var(--bad-back); }
.said b { color: var(--warn); }
.said.error b { color: var(--bad); }
.outcome { font-weight: 700; color: var(--bad); white-space: nowrap; }
.outcome.good { color: var(--good); }
.outcome.warn { color: var(--warn); }
dl { display: grid; grid-template-columns: max-content minmax(0, 1fr); gap: 0.25rem 0.9rem; margin: 0.4rem 0; }
dt { color: var(--soft); }
dd { margin: 0; min-width: 0; }
.formula { overflow-x: auto; overflow-y: hidden; padding: 0.15rem 0; max-width: 100%; }
math { font-size: 1.15em; }
.bars { margin-top: 0.5rem; font-size: 0.85rem; color: var(--soft); }
.bar { display: grid; grid-template-columns: minmax(0, 1fr) 9rem; gap: 0.6rem; align-items: center; }
.bar svg { display: block; width: 100%; height: 0.5rem; background: var(--line); border-radius: 0.25rem; }
.bar rect { fill: var(--bar); }
.bar.time rect { fill: var(--time); }
.share {
  display: block; height: 0.25rem; margin-top: 0.25rem; border-radius: 0.125rem; background: var(--bar);
  width: max(2px, calc(100% * var(--part) / var(--most-work)));
}
.share.time { background: var(--time); width: max(2px, calc(100% * var(--part) / var(--most-time))); }
.untimed .time { display: none; }
.counts { list-style: none; display: flex; flex-wrap: wrap; gap: 0.3rem 1.2rem; padding: 0; }
.none { display: none; }
table { width: 100%; border-collapse: collapse; background: var(--card); }
th, td { text-align: left; padding: 0.35rem 0.6rem; border-bottom: 1px solid var(--line); vertical-align: top; }
th { color: var(--soft); font-weight: 600; font-size: 0.9rem; }
td.count, th.count { text-align: right; white-space: nowrap; }
@media (max-width: 36rem) {
  body { padding: 0.6rem; }
  dl { grid-template-columns: minmax(0, 1fr); gap: 0; }
  dd { margin-bottom: 0.4rem; }
  .bar { grid-template-columns: minmax(0, 1fr) 7rem; }
  .wide { display: none; }
}
)";

}  // namespace vetro
