#include "qxrun/data/BarRows.h"

#include "qxrun/InputError.h"
#include "qxrun/data/Numbers.h"

#include <cmath>

namespace qxrun {
namespace {

constexpr int64_t kMillisecondsPerDay = 86400000;

}  // namespace

BarRows::BarRows(const BarLayout& layout, std::string fileName)
    : layout_(layout), fileName_(std::move(fileName)) {}

void BarRows::Fail(int64_t lineNumber, BarField field, const std::string& problem,
                   std::string_view value) const {
  throw InputError(fileName_ + ":" + std::to_string(lineNumber) + ": field " + BarFieldName(field) +
                   ": " + problem + " (value '" + Quoted(value) + "')");
}

double BarRows::Number(BarField field, bool required, int64_t lineNumber) const {
  const int column = layout_.Column(field);
  if (column < 0) return 0.0;
  const std::string_view text = fields_[static_cast<size_t>(column)];
  if (text.empty()) {
    if (!required) return 0.0;
    Fail(lineNumber, field, "empty", text);
  }
  double value = 0.0;
  if (!ParseNumber(text, &value)) Fail(lineNumber, field, "not a number", text);
  if (!std::isfinite(value)) Fail(lineNumber, field, "not a finite number", text);
  if (value < 0.0) {
    Fail(lineNumber, field, required ? "negative price" : "negative", text);
  }
  return value;
}

std::optional<size_t> BarRows::ReadDate(std::string_view text, CivilDate* date) {
  // Rows of one day repeat the date's text: the same text followed by no further digit is the
  // same date.
  const size_t cached = lastDateText_.size();
  if (cached > 0 && text.size() >= cached && text.compare(0, cached, lastDateText_) == 0 &&
      (text.size() == cached || text[cached] < '0' || text[cached] > '9')) {
    *date = lastDate_;
    return cached;
  }
  const std::optional<size_t> length = layout_.DateFormat->ReadDate(text, date);
  if (length) {
    lastDateText_.assign(text.substr(0, *length));
    lastDate_ = *date;
  }
  return length;
}

int64_t BarRows::Instant(int64_t lineNumber, int64_t* localMilliseconds) {
  const bool combined = layout_.Column(BarField::kDateTime) >= 0;
  const BarField dateField = combined ? BarField::kDateTime : BarField::kDate;
  const std::string_view dateText = fields_[static_cast<size_t>(layout_.Column(dateField))];
  CivilDate date;
  const std::optional<size_t> dateLength = ReadDate(dateText, &date);
  const bool timeFollows = combined && layout_.TimeFormat.has_value();
  if (!dateLength || (!timeFollows && *dateLength != dateText.size())) {
    Fail(lineNumber, dateField, "not a date in the layout " + layout_.DateFormat->Text(), dateText);
  }
  int32_t millisecondsOfDay = 0;
  if (layout_.TimeFormat) {
    BarField timeField = BarField::kTime;
    std::string_view timeText;
    if (combined) {
      timeField = BarField::kDateTime;
      size_t start = *dateLength;
      if (start < dateText.size() && (dateText[start] == ' ' || dateText[start] == 'T')) {
        ++start;
        while (start < dateText.size() && dateText[start] == ' ') ++start;
      } else {
        start = dateText.size() + 1;  // no separator: no time
      }
      timeText = start <= dateText.size() ? dateText.substr(start) : std::string_view();
    } else {
      timeText = fields_[static_cast<size_t>(layout_.Column(BarField::kTime))];
    }
    const std::optional<size_t> timeLength =
        layout_.TimeFormat->ReadTime(timeText, &millisecondsOfDay);
    if (!timeLength || *timeLength != timeText.size()) {
      Fail(lineNumber, timeField, "not a time of day in the layout " + layout_.TimeFormat->Text(),
           combined ? dateText : timeText);
    }
  }
  *localMilliseconds = DaysFromCivil(date) * kMillisecondsPerDay + millisecondsOfDay;
  return days_.Instant(date, millisecondsOfDay, any_ ? previousInstant_ : LocalDays::kNoPrevious);
}

QXBar BarRows::Read(std::string_view line, int64_t lineNumber) {
  const int count = SplitFields(line, layout_.Delimiter, fields_.data(), layout_.ColumnsNeeded);
  if (count < layout_.ColumnsNeeded) {
    // Name the first field, in column order, that the row lacks.
    BarField missing = BarField::kDate;
    int lowest = kMaxColumns;
    for (size_t field = 0; field < kBarFieldCount; ++field) {
      const int column = layout_.Columns[field];
      if (column >= count && column < lowest) {
        lowest = column;
        missing = static_cast<BarField>(field);
      }
    }
    Fail(lineNumber, missing,
         "missing column: the row has " + std::to_string(count) + " field" +
             (count == 1 ? "" : "s") + " split at " + DelimiterName(layout_.Delimiter) +
             ", the field is column " + std::to_string(lowest + 1) +
             DelimiterHint(line, layout_.Delimiter),
         line);
  }

  QXBar bar;
  int64_t local = 0;
  bar.Time = Instant(lineNumber, &local);
  if (any_ && bar.Time <= previousInstant_) {
    const BarField timeField = layout_.Column(BarField::kDateTime) >= 0 ? BarField::kDateTime
                               : layout_.TimeFormat                     ? BarField::kTime
                                                                        : BarField::kDate;
    const std::string previous = std::to_string(previousLine_);
    Fail(lineNumber, timeField,
         bar.Time == previousInstant_
             ? "repeats the time of line " + previous
             : "earlier than line " + previous + "; bars must be in ascending time",
         fields_[static_cast<size_t>(layout_.Column(timeField))]);
  }
  bar.Open = Number(BarField::kOpen, true, lineNumber);
  bar.High = Number(BarField::kHigh, true, lineNumber);
  bar.Low = Number(BarField::kLow, true, lineNumber);
  bar.Close = Number(BarField::kClose, true, lineNumber);
  bar.Vol = Number(BarField::kVolume, false, lineNumber);
  bar.OpenInt = Number(BarField::kOpenInt, false, lineNumber);
  if (bar.Low > bar.High || bar.Open < bar.Low || bar.Open > bar.High || bar.Close < bar.Low ||
      bar.Close > bar.High) {
    FailOutsideRange(bar, lineNumber);
  }

  if (any_) CountSpacing(local - previousLocal_);
  any_ = true;
  previousInstant_ = bar.Time;
  previousLine_ = lineNumber;
  previousLocal_ = local;
  return bar;
}

void BarRows::FailOutsideRange(const QXBar& bar, int64_t lineNumber) const {
  const auto text = [this](BarField field) {
    return std::string(fields_[static_cast<size_t>(layout_.Column(field))]);
  };
  if (bar.Low > bar.High) {
    Fail(lineNumber, BarField::kLow, "above High " + text(BarField::kHigh), text(BarField::kLow));
  }
  const std::string range = text(BarField::kLow) + " to " + text(BarField::kHigh);
  const BarField outside =
      bar.Open < bar.Low || bar.Open > bar.High ? BarField::kOpen : BarField::kClose;
  Fail(lineNumber, outside, "outside Low to High (" + range + ")", text(outside));
}

void BarRows::CountSpacing(int64_t localMilliseconds) {
  if (localMilliseconds <= 0) return;  // the second pass through a repeated hour
  if (spacingCount_ > 0 && spacings_[lastSpacing_].first == localMilliseconds) {
    ++spacings_[lastSpacing_].second;
    return;
  }
  for (size_t i = 0; i < spacingCount_; ++i) {
    if (spacings_[i].first == localMilliseconds) {
      ++spacings_[i].second;
      lastSpacing_ = i;
      return;
    }
  }
  if (spacingCount_ < kSpacings) {
    spacings_[spacingCount_] = {localMilliseconds, 1};
    lastSpacing_ = spacingCount_++;
  }
}

std::pair<uint32_t, uint32_t> BarRows::Period() const {
  int64_t spacing = 0;
  int64_t seen = 0;
  for (size_t i = 0; i < spacingCount_; ++i) {
    const auto& [value, count] = spacings_[i];
    if (count > seen || (count == seen && value < spacing)) {
      spacing = value;
      seen = count;
    }
  }
  if (spacing == 0) {
    const bool atMidnight = previousLocal_ % kMillisecondsPerDay == 0;
    return atMidnight ? std::pair<uint32_t, uint32_t>{0, 1} : std::pair<uint32_t, uint32_t>{1, 1};
  }
  if (spacing >= 28 * kMillisecondsPerDay) return {5, 1};
  if (spacing >= 7 * kMillisecondsPerDay) return {4, 1};
  if (spacing >= kMillisecondsPerDay) return {0, 1};
  if (spacing % 60000 == 0) return {1, static_cast<uint32_t>(spacing / 60000)};
  return {2, static_cast<uint32_t>(std::max<int64_t>(1, spacing / 1000))};
}

}  // namespace qxrun
