// Texts that the program carries: the limits that it comes with, and what a page needs to draw.
// The build makes them of their files.
#pragma once

namespace quorvex::tool {

extern const char kShippedLimits[];
extern const char kPageStyle[];
// Of the page's script, in this order.
extern const char kPageBase[], kPagePlot[], kPageLines[], kPagePainted[], kPageDrawing[];
// Of the library that draws: dygraphs, as packaged, with its terms.
extern const char kChartScript[], kChartTerms[];

}  // namespace quorvex::tool
