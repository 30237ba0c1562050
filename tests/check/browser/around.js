"use strict";
// The page around: one line for each page that was measured, and one for each problem.
const said = document.getElementById("said");
addEventListener("message", ({ data }) => {
  said.textContent += `measured ${data.page} ${data.width} with ${data.math} formulas\n`;
  for (const problem of data.problems) said.textContent += `${data.page} at ${data.width}: ${problem}\n`;
});
