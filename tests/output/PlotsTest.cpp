#include "sysfuncs/SystemFuncs.h"

#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <stdexcept>
#include <string>

namespace sysfuncs::testing {
namespace {

// A formula on a five-bar series, evaluating bar 2 unless a test moves it.
class Plots : public ::testing::Test {
 protected:
  Plots() {
    host.AddSource("s", EvenBars(0, 60000, 5));
    host.At(0, 0);
    funcs = std::make_unique<CSystemFuncs>(&host.data);
    host.At(0, 2);
  }

  PlotCell Cell(size_t series, size_t bar) const {
    const PlotSeries& plotted = host.data.Plots.at(series);
    if (bar >= plotted.Size()) throw std::out_of_range("no cell " + std::to_string(bar));
    return plotted.Cell(bar);
  }

  TestHost host;
  std::unique_ptr<CSystemFuncs> funcs;
};

TEST_F(Plots, NumericFillsItsCellOfASeriesOfBarCountCells) {
  EXPECT_EQ(funcs->PlotNumeric("MA", 10.5, 0.25, 0xFF00, 0), 10.5);
  ASSERT_EQ(host.data.Plots.size(), 1u);
  EXPECT_EQ(host.data.Plots[0].name, "MA");
  ASSERT_EQ(host.data.Plots[0].Size(), 5u);
  const PlotCell& cell = Cell(0, 2);
  EXPECT_TRUE(cell.numericSet);
  EXPECT_EQ(cell.numericValue, 10.5);
  EXPECT_EQ(cell.numericLocator, 0.25);
  EXPECT_TRUE(cell.colorSet);
  EXPECT_EQ(cell.color, 0xFF00);
  // Only its own fields and the colour pair: the bool and text parts are as new.
  EXPECT_FALSE(cell.boolSet);
  EXPECT_FALSE(cell.stringSet);
  EXPECT_EQ(cell.boolLocator, kInvalidNumber);
  EXPECT_EQ(cell.stringLocator, kInvalidNumber);
  // Untouched cells are new cells.
  for (size_t bar : {0u, 1u, 3u, 4u}) {
    const PlotCell& other = Cell(0, bar);
    EXPECT_FALSE(other.numericSet || other.boolSet || other.stringSet || other.colorSet) << bar;
    EXPECT_EQ(other.numericValue, 0.0) << bar;
    EXPECT_EQ(other.numericLocator, kInvalidNumber) << bar;
    EXPECT_EQ(other.color, 0) << bar;
  }
}

TEST_F(Plots, OneCellHoldsBoolNumericAndTextAtOnce) {
  EXPECT_TRUE(funcs->PlotBool("mix", true, 1.0, 7, 0));
  EXPECT_EQ(funcs->PlotNumeric("mix", 3.5, 2.0, 8, 0), 3.5);
  EXPECT_EQ(funcs->PlotString("mix", "up", 3.0, -1, 0), "up");
  const PlotCell& cell = Cell(0, 2);
  EXPECT_TRUE(cell.boolSet && cell.boolValue);
  EXPECT_EQ(cell.boolLocator, 1.0);
  EXPECT_TRUE(cell.numericSet);
  EXPECT_EQ(cell.numericLocator, 2.0);
  EXPECT_TRUE(cell.stringSet);
  EXPECT_EQ(cell.text, "up");
  EXPECT_EQ(cell.stringLocator, 3.0);
  // The last colour given wins; -1 is stored and shows no colour.
  EXPECT_FALSE(cell.colorSet);
  EXPECT_EQ(cell.color, -1);
  // A false bool is still a bool mark, and PlotBool answers the value.
  EXPECT_FALSE(funcs->PlotBool("mix", false, 0.0, 7, 1));
  EXPECT_TRUE(Cell(0, 1).boolSet);
  EXPECT_FALSE(Cell(0, 1).boolValue);
}

TEST_F(Plots, LocatorIsKeptOnlyAboveOneTenMillionth) {
  const struct {
    double first, second, expected;
  } rows[] = {
      {0.0, 0.0, kInvalidNumber},  // a fresh cell keeps "no locator"
      {1e-7, -1e-7, kInvalidNumber},
      {5.0, 0.0, 5.0},  // a small locator leaves the earlier one
      {5.0, 1e-7, 5.0},
      {5.0, -1e-7, 5.0},
      {5.0, 1.5e-7, 1.5e-7},
      {5.0, -2.0, -2.0},
  };
  for (const auto& row : rows) {
    host.At(0, 4);
    host.data.Plots.clear();
    funcs->PlotNumeric("L", 1.0, row.first, -1, 0);
    funcs->PlotNumeric("L", 1.0, row.second, -1, 0);
    funcs->PlotBool("L", true, row.first, -1, 0);
    funcs->PlotBool("L", true, row.second, -1, 0);
    funcs->PlotString("L", "t", row.first, -1, 0);
    funcs->PlotString("L", "t", row.second, -1, 0);
    EXPECT_EQ(Cell(0, 4).numericLocator, row.expected) << row.first << " then " << row.second;
    EXPECT_EQ(Cell(0, 4).boolLocator, row.expected) << row.first << " then " << row.second;
    EXPECT_EQ(Cell(0, 4).stringLocator, row.expected) << row.first << " then " << row.second;
  }
}

TEST_F(Plots, InvalidValuesAreStoredButNotShown) {
  EXPECT_EQ(funcs->PlotNumeric("v", kInvalidNumber, 0.0, 3, 0), kInvalidNumber);
  EXPECT_FALSE(Cell(0, 2).numericSet);
  EXPECT_EQ(Cell(0, 2).numericValue, kInvalidNumber);
  EXPECT_TRUE(Cell(0, 2).colorSet);

  EXPECT_EQ(funcs->PlotString("v", "N/A", 0.0, -1, 0), "N/A");
  EXPECT_FALSE(Cell(0, 2).stringSet);
  EXPECT_EQ(Cell(0, 2).text, "N/A");
  // Only the exact text is invalid.
  EXPECT_EQ(funcs->PlotString("v", "n/a", 0.0, -1, 1), "n/a");
  EXPECT_TRUE(Cell(0, 1).stringSet);
}

// NaN and the infinities are no numbers to draw: they plot as the invalid number, and as a
// locator they are no locator.
TEST_F(Plots, NonFiniteValuesPlotAsTheInvalidNumberAndLocateNothing) {
  for (double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    host.data.Plots.clear();
    funcs->PlotNumeric("v", 1.0, 4.0, -1, 0);
    EXPECT_EQ(funcs->PlotNumeric("v", bad, bad, -1, 0), kInvalidNumber) << bad;
    EXPECT_FALSE(Cell(0, 2).numericSet) << bad;
    EXPECT_EQ(Cell(0, 2).numericValue, kInvalidNumber) << bad;
    EXPECT_EQ(Cell(0, 2).numericLocator, 4.0) << bad;
    EXPECT_TRUE(funcs->PlotBool("v", true, bad, -1, 0)) << bad;
    EXPECT_EQ(Cell(0, 2).boolLocator, kInvalidNumber) << bad;
    EXPECT_EQ(funcs->PlotString("v", "t", bad, -1, 0), "t") << bad;
    EXPECT_EQ(Cell(0, 2).stringLocator, kInvalidNumber) << bad;
  }
}

TEST_F(Plots, RefusalsAnswerEachFunctionsInvalidValueAndStoreNothing) {
  const struct {
    const char* why;
    const char* name;
    int32_t barsAgo;
  } rows[] = {
      {"the name N/A", "N/A", 0},
      {"before the first bar", "p", 3},  // target 2 - 3 = -1
      {"past the last bar", "p", -3},    // target 5 = BarCount
      {"no overflow of the target", "p", INT_MIN},
      {"no overflow the other way", "p", INT_MAX},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(funcs->PlotNumeric(row.name, 1.0, 0.0, -1, row.barsAgo), kInvalidNumber) << row.why;
    EXPECT_FALSE(funcs->PlotBool(row.name, true, 0.0, -1, row.barsAgo)) << row.why;
    EXPECT_EQ(funcs->PlotString(row.name, "t", 0.0, -1, row.barsAgo), "N/A") << row.why;
    EXPECT_FALSE(funcs->Unplot(row.name, row.barsAgo)) << row.why;
    EXPECT_TRUE(host.data.Plots.empty()) << row.why;
  }
  // The refused name is compared byte for byte: "n/a" is a name like any other.
  EXPECT_EQ(funcs->PlotNumeric("n/a", 1.0, 0.0, -1, 0), 1.0);
  // Bars inside the series are addressed both ways: the first bar and a later bar.
  EXPECT_EQ(funcs->PlotNumeric("p", 2.0, 0.0, -1, 2), 2.0);
  EXPECT_EQ(funcs->PlotNumeric("p", 4.0, 0.0, -1, -2), 4.0);
  EXPECT_EQ(Cell(1, 0).numericValue, 2.0);
  EXPECT_EQ(Cell(1, 4).numericValue, 4.0);
}

TEST_F(Plots, WhileOutputIsSuppressedNumericAndTextComeBackButBoolIsFalse) {
  for (int32_t mode : {1, 2, -1}) {
    host.data.OutputMode = mode;
    EXPECT_EQ(funcs->PlotNumeric("p", 7.5, 0.0, -1, 0), 7.5) << mode;
    EXPECT_EQ(funcs->PlotNumeric("N/A", 7.5, 0.0, -1, 0), 7.5) << mode;
    EXPECT_EQ(funcs->PlotString("p", "text", 0.0, -1, 0), "text") << mode;
    EXPECT_EQ(funcs->PlotString("p", "text", 0.0, -1, 99), "text") << mode;
    EXPECT_FALSE(funcs->PlotBool("p", true, 0.0, -1, 0)) << mode;
    EXPECT_TRUE(host.data.Plots.empty()) << mode;
  }
  host.data.OutputMode = 0;
  ASSERT_TRUE(funcs->PlotBool("p", true, 0.0, -1, 0));
  host.data.OutputMode = 1;
  EXPECT_FALSE(funcs->Unplot("p", 0));
  EXPECT_TRUE(Cell(0, 2).boolSet);
}

TEST_F(Plots, NamesMatchWithoutRegardToLetterCaseAndKeepTheFirstSpelling) {
  funcs->PlotNumeric("MA", 1.0, 0.0, -1, 0);
  funcs->PlotNumeric("Vol", 2.0, 0.0, -1, 0);
  funcs->PlotNumeric("ma", 3.0, 0.0, -1, 1);
  funcs->PlotNumeric("vOL", 4.0, 0.0, -1, 1);
  ASSERT_EQ(host.data.Plots.size(), 2u);  // in order of first use
  EXPECT_EQ(host.data.Plots[0].name, "MA");
  EXPECT_EQ(host.data.Plots[1].name, "Vol");
  EXPECT_EQ(Cell(0, 1).numericValue, 3.0);
  EXPECT_EQ(Cell(1, 1).numericValue, 4.0);
  EXPECT_TRUE(funcs->Unplot("mA", 1));
  EXPECT_FALSE(Cell(0, 1).numericSet);

  // Chinese names: the ASCII letters around them fold, the characters stay what they are.
  funcs->PlotNumeric("均线A", 5.0, 0.0, -1, 0);
  funcs->PlotNumeric("均线a", 6.0, 0.0, -1, 0);
  funcs->PlotNumeric("均价a", 7.0, 0.0, -1, 0);
  ASSERT_EQ(host.data.Plots.size(), 4u);
  EXPECT_EQ(host.data.Plots[2].name, "均线A");
  EXPECT_EQ(Cell(2, 2).numericValue, 6.0);
  EXPECT_EQ(Cell(3, 2).numericValue, 7.0);
}

#if defined(SYSFUNCS_CHARSET_GB18030)
TEST_F(Plots, TheSecondByteOfAGbkCharacterIsNotALetter) {
  // 0x81 0x41 and 0x81 0x61 are two different characters whose second bytes read as 'A' and 'a'.
  funcs->PlotNumeric("\x81\x41", 1.0, 0.0, -1, 0);
  funcs->PlotNumeric("\x81\x61", 2.0, 0.0, -1, 0);
  ASSERT_EQ(host.data.Plots.size(), 2u);
  // A letter after a character still folds.
  funcs->PlotNumeric("\x81\x41Z", 3.0, 0.0, -1, 0);
  funcs->PlotNumeric("\x81\x41z", 4.0, 0.0, -1, 0);
  ASSERT_EQ(host.data.Plots.size(), 3u);
  EXPECT_EQ(Cell(2, 2).numericValue, 4.0);
}
#endif

TEST_F(Plots, EveryPlotFollowsTheBarCountButUnplotNeverResizes) {
  funcs->PlotNumeric("p", 1.0, 0.0, -1, 0);
  ASSERT_EQ(host.data.Plots[0].Size(), 5u);
  // The bar series grows by three bars: the next plot grows the series, cells kept.
  host.sources[0].Bars = EvenBars(0, 60000, 8);
  host.At(0, 7);
  EXPECT_FALSE(funcs->Unplot("p", 0)) << "cell 7 does not exist yet";
  EXPECT_EQ(host.data.Plots[0].Size(), 5u);
  funcs->PlotBool("P", true, 0.0, -1, 0);
  ASSERT_EQ(host.data.Plots[0].Size(), 8u);
  EXPECT_EQ(Cell(0, 2).numericValue, 1.0);
  EXPECT_TRUE(Cell(0, 7).boolSet);
  funcs->PlotString("p", "gone", 2.5, 3, 3);  // bar 4, with a locator and a text
  // A shrinking series drops cells at the end.
  host.sources[0].Bars = EvenBars(0, 60000, 3);
  host.At(0, 2);
  funcs->PlotString("p", "x", 0.0, -1, 0);
  ASSERT_EQ(host.data.Plots[0].Size(), 3u);
  EXPECT_TRUE(Cell(0, 2).numericSet);
  EXPECT_TRUE(Cell(0, 2).stringSet);
  // Grown again, the dropped cells come back new, their locators and texts gone with them.
  host.sources[0].Bars = EvenBars(0, 60000, 8);
  host.At(0, 7);
  funcs->PlotNumeric("p", 2.0, 0.0, -1, 1);
  ASSERT_EQ(host.data.Plots[0].Size(), 8u);
  for (size_t bar : {4u, 7u}) {
    const PlotCell cell = Cell(0, bar);
    EXPECT_FALSE(cell.boolSet || cell.stringSet || cell.colorSet) << bar;
    EXPECT_EQ(cell.text, "") << bar;
    EXPECT_EQ(cell.stringLocator, kInvalidNumber) << bar;
    EXPECT_EQ(cell.color, 0) << bar;
  }
}

TEST_F(Plots, AnEmptyTextReplacesTheTextAndKeepsTheLocators) {
  // "q" has no locator, so its cell holds nothing but the text; "r" keeps its locator.
  funcs->PlotString("q", "t", 0.0, -1, 0);
  funcs->PlotString("q", "", 0.0, -1, 0);
  funcs->PlotString("r", "t", 3.0, -1, 0);
  funcs->PlotString("r", "", 0.0, -1, 0);
  for (size_t series : {0u, 1u}) {
    EXPECT_TRUE(Cell(series, 2).stringSet) << "an empty text is not the invalid text";
    EXPECT_EQ(Cell(series, 2).text, "") << series;
  }
  EXPECT_EQ(Cell(0, 2).stringLocator, kInvalidNumber);
  EXPECT_EQ(Cell(1, 2).stringLocator, 3.0);
}

// Every part of a cell comes back as it was stored, also when a cell is stored over another of a
// different shape.
TEST(PlotStorage, ACellReadsBackWhatWasStoredOverAnyOther) {
  auto cellOf = [](double value, double locator, const char* text, int32_t color, int flags) {
    PlotCell cell;
    cell.numericValue = value;
    cell.numericLocator = locator;
    cell.boolLocator = flags & 1 ? -locator : kInvalidNumber;
    cell.text = text;
    cell.color = color;
    cell.boolSet = flags & 1;
    cell.boolValue = flags & 2;
    cell.numericSet = flags & 4;
    cell.stringSet = flags & 8;
    cell.colorSet = flags & 16;
    return cell;
  };
  const PlotCell rows[] = {
      PlotCell(),                                        // a new cell
      cellOf(3000.5, kInvalidNumber, "", 0xFF, 4 | 16),  // a plain numeric cell
      cellOf(kInvalidNumber, 2.0, "", -1, 0),            // an invalid value with a locator
      cellOf(0.0, kInvalidNumber, "N/A", 0, 0),          // the invalid text, not shown
      cellOf(-1.25, 1e-6, "a text past the short-string size", 7, 1 | 2 | 4 | 8 | 16),
      cellOf(1.0, 5.0, "", 0, 1),  // a false bool with a locator
  };
  const size_t count = sizeof(rows) / sizeof(rows[0]);
  for (size_t first = 0; first < count; ++first) {
    for (size_t second = 0; second < count; ++second) {
      PlotSeries series;
      series.Resize(3);
      series.SetCell(1, rows[first]);
      series.SetCell(1, rows[second]);
      const PlotCell cell = series.Cell(1);
      const PlotCell& want = rows[second];
      const std::string row = std::to_string(first) + " then " + std::to_string(second);
      EXPECT_EQ(cell.numericValue, want.numericValue) << row;
      EXPECT_EQ(cell.numericLocator, want.numericLocator) << row;
      EXPECT_EQ(cell.boolLocator, want.boolLocator) << row;
      EXPECT_EQ(cell.stringLocator, want.stringLocator) << row;
      EXPECT_EQ(cell.text, want.text) << row;
      EXPECT_EQ(cell.color, want.color) << row;
      EXPECT_EQ(cell.boolSet, want.boolSet) << row;
      EXPECT_EQ(cell.boolValue, want.boolValue) << row;
      EXPECT_EQ(cell.numericSet, want.numericSet) << row;
      EXPECT_EQ(cell.stringSet, want.stringSet) << row;
      EXPECT_EQ(cell.colorSet, want.colorSet) << row;
      EXPECT_EQ(series.NumericSet(1), want.numericSet) << row;
      EXPECT_EQ(series.NumericValue(1), want.numericValue) << row;
      // The neighbours stay new cells.
      for (size_t bar : {0u, 2u}) {
        EXPECT_EQ(series.Cell(bar).text, "") << row;
        EXPECT_EQ(series.Cell(bar).numericLocator, kInvalidNumber) << row;
        EXPECT_FALSE(series.NumericSet(bar)) << row;
      }
    }
  }
}

TEST_F(Plots, UnplotClearsTheFlagsAndKeepsTheValues) {
  EXPECT_FALSE(funcs->Unplot("never", 0));
  EXPECT_TRUE(host.data.Plots.empty()) << "Unplot creates no series";

  funcs->PlotBool("p", true, 1.0, 4, 0);
  funcs->PlotNumeric("p", 9.0, 2.0, 4, 0);
  funcs->PlotString("p", "t", 3.0, 4, 0);
  EXPECT_TRUE(funcs->Unplot("p", 0));
  const PlotCell& cell = Cell(0, 2);
  EXPECT_FALSE(cell.boolSet || cell.numericSet || cell.stringSet || cell.colorSet);
  EXPECT_TRUE(cell.boolValue);
  EXPECT_EQ(cell.numericValue, 9.0);
  EXPECT_EQ(cell.text, "t");
  EXPECT_EQ(cell.color, 4);
  EXPECT_EQ(cell.numericLocator, 2.0);
  EXPECT_TRUE(funcs->Unplot("p", 0)) << "a second Unplot clears again";
  EXPECT_TRUE(funcs->Unplot("p", 1)) << "a cell that was never plotted exists";
}

}  // namespace
}  // namespace sysfuncs::testing
