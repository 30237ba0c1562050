// Measures the page that it was put into, and tells the page around it what is wrong. See run.sh.
"use strict";

const problems = [];
const refused = [];
document.addEventListener("securitypolicyviolation", (event) => refused.push(event.blockedURI));

const width = Number(new URLSearchParams(location.search).get("width"));
const mode = new URLSearchParams(location.search).get("mode");

function complain(element, text) {
  const words = element === null ? "" : `<${element.localName} class="${element.className}"> ${element.textContent.trim().slice(0, 40)}: `;
  problems.push(words + text);
}

// ---- Colours.

function channels(colour) {
  const [red, green, blue, alpha] = colour.match(/[\d.]+/g).map(Number);
  return { red, green, blue, alpha: alpha === undefined ? 1 : alpha };
}

function luminance({ red, green, blue }) {
  const linear = [red, green, blue].map((c) => (c <= 10 ? c / 3294.6 : ((c / 255 + 0.055) / 1.055) ** 2.4));
  return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2];
}

function background(element) {
  for (let e = element; e !== null; e = e.parentElement) {
    const colour = channels(getComputedStyle(e).backgroundColor);
    if (colour.alpha === 1) return colour;  // nothing here is half transparent
  }
  return { red: 255, green: 255, blue: 255 };
}

function contrast(a, b) {
  const [low, high] = [luminance(a), luminance(b)].sort((x, y) => x - y);
  return (high + 0.05) / (low + 0.05);
}

// ---- What is looked at.

const box = (element) => element.getBoundingClientRect();
const shown = (element) => element.checkVisibility() && box(element).width > 0 && box(element).height > 0;

function checkWidth() {
  if (innerWidth !== width) complain(null, `the page is ${innerWidth} wide in place of ${width}`);
  if (document.documentElement.scrollWidth > innerWidth) {
    complain(null, `the page overflows: ${document.documentElement.scrollWidth} in ${innerWidth}`);
  }
  // What is wider than its place can be scrolled there.
  for (const e of document.querySelectorAll("body *")) {
    if (box(e).right > innerWidth + 1 && e.closest(".formula, pre") === null) complain(e, "stands out on the right");
  }
}

function checkTexts() {
  for (const e of document.querySelectorAll("body *")) {
    const own = Array.from(e.childNodes).some((n) => n.nodeType === Node.TEXT_NODE && n.data.trim() !== "");
    if (!own || e.closest(".none, math, script") !== null || (width < 576 && e.closest(".wide") !== null)) continue;
    if (!shown(e)) complain(e, "is not seen");
    const ratio = contrast(channels(getComputedStyle(e).color), background(e));
    if (ratio < 4.5) complain(e, `has a contrast of ${ratio.toFixed(1)}`);
  }
}

function checkFormulas() {
  for (const math of document.querySelectorAll("math")) {
    for (const leaf of math.querySelectorAll("mi, mn, mo, mtext")) {
      // Signs such as the application of a function have no width.
      if (!/^[\u2061-\u2064\s]*$/.test(leaf.textContent) && !shown(leaf)) complain(math, `'${leaf.textContent}' is not seen`);
    }
    for (const fraction of math.querySelectorAll("mfrac")) {
      const [above, below] = fraction.children;
      if (box(above).bottom > box(below).top + 1) complain(math, "a fraction is not set as one");
    }
    for (const power of math.querySelectorAll("msup")) {
      const [base, raised] = power.children;
      if (box(raised).top >= box(base).bottom || box(raised).left < box(base).right - 1 || box(raised).bottom >= box(base).bottom) {
        complain(math, "a power is not set as one");
      }
    }
  }
}

// Failures are told from the rest by a border and by a colour of their own.
function checkMarks() {
  const page = getComputedStyle(document.body);
  for (const step of document.querySelectorAll(".step")) {
    const style = getComputedStyle(step);
    const failed = step.classList.contains("failed");
    if (failed !== parseFloat(style.borderLeftWidth) >= 4) complain(step, "has the wrong border");
    if (failed && style.borderLeftColor === page.color) complain(step, "has a border without a colour");
  }
  for (const said of document.querySelectorAll(".said")) {
    if (getComputedStyle(said).backgroundColor === page.backgroundColor) complain(said, "is not marked");
  }
  const colours = new Map();
  for (const outcome of document.querySelectorAll(".outcome")) {
    const mood = outcome.classList.contains("good") ? "good" : outcome.classList.contains("warn") ? "warn" : "bad";
    colours.set(getComputedStyle(outcome).color, mood);
  }
  if (new Set(colours.values()).size !== colours.size) complain(null, "outcomes do not differ in colour");
}

function checkBars() {
  for (const bar of document.querySelectorAll(".bar")) {
    const track = box(bar.querySelector("svg"));
    const part = box(bar.querySelector("rect"));
    const nothing = /(^| )0( |$)/.test(bar.textContent.trim());
    if (nothing !== (part.width === 0) || part.width > track.width + 1) complain(bar, `has a bar of ${part.width} in ${track.width}`);
  }
  // In the index the largest fills its place, and the others are shorter.
  const shares = Array.from(document.querySelectorAll(".share:not(.time)"));
  if (shares.length === 0) return;
  const widths = shares.map((e) => box(e).width / box(e.parentElement).width);
  const parts = shares.map((e) => Number(getComputedStyle(e).getPropertyValue("--part")));
  const most = parts.indexOf(Math.max(...parts));
  if (widths[most] < 0.8 || widths[most] > 1) complain(shares[most], `has a share of ${widths[most]}`);
  widths.forEach((w, i) => {
    if (w <= 0 || (parts[i] < parts[most] / 2 && w > 0.6)) complain(shares[i], `has a share of ${w}`);
  });
}

addEventListener("load", () => {
  const dark = matchMedia("(prefers-color-scheme: dark)").matches;
  if (dark !== (mode === "dark")) complain(null, `the page is not asked to be ${mode}`);
  if ((luminance(background(document.body)) < 0.2) !== dark) complain(null, `the page is not ${mode}`);
  if (document.scripts.length !== 1) complain(null, "the page has a script");
  checkWidth();
  checkTexts();
  checkFormulas();
  checkMarks();
  checkBars();
  for (const address of refused) complain(null, `the page loads ${address}`);
  parent.postMessage({ page: location.pathname.split("/").pop(), width, problems, math: document.querySelectorAll("math").length }, "*");
});
