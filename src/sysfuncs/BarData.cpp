// Bar-data functions: direct reads of the current bar of the current data source. No bounds
// check, no allocation, no lock.
#include "sysfuncs/Environment.h"
#include "sysfuncs/SFImpl.h"
#include "sysfuncs/SystemFuncs.h"

#include "util/DateCodec.h"
#include "util/PackedTick.h"

namespace {

const QXBar& CurrentBar(const CQXBaseData* data) {
  return (*data->DataSources)[data->CurrentData].Bars[data->CurrentBar];
}

}  // namespace

double CSystemFuncs::High() {
  const double high = CurrentBar(m_pData).High;
  return m_pImpl->m_bTickPacked ? sysfuncs::PackedPrice(high) : high;
}
double CSystemFuncs::H() { return High(); }

double CSystemFuncs::Low() {
  const double low = CurrentBar(m_pData).Low;
  return m_pImpl->m_bTickPacked ? sysfuncs::PackedPrice(low) : low;
}
double CSystemFuncs::L() { return Low(); }

int32_t CSystemFuncs::Date() { return sysfuncs::EncodeDate(m_pImpl->BarFields()); }
int32_t CSystemFuncs::D() { return Date(); }
double CSystemFuncs::Time() { return sysfuncs::EncodeTime(m_pImpl->BarFields()); }
double CSystemFuncs::T() { return Time(); }
int32_t CSystemFuncs::Year() { return m_pImpl->BarFields().Year; }
int32_t CSystemFuncs::Month() { return m_pImpl->BarFields().Month; }
int32_t CSystemFuncs::Day() { return m_pImpl->BarFields().Day; }
int32_t CSystemFuncs::Hour() { return m_pImpl->BarFields().Hour; }
int32_t CSystemFuncs::Minute() { return m_pImpl->BarFields().Minute; }
int32_t CSystemFuncs::Second() { return m_pImpl->BarFields().Second; }
int32_t CSystemFuncs::Weekday() { return m_pImpl->BarFields().Weekday; }

// The remainder takes the sign of the time: a bar before 1970 gives a negative or zero result.
int32_t CSystemFuncs::MilliSecond() {
  return static_cast<int32_t>(CurrentBar(m_pData).Time % 1000);
}

int32_t CSystemFuncs::BarStatus() {
  if (m_pData->CurrentBar == 0) return 0;  // the first bar wins on a one-bar series
  return m_pData->CurrentBar == m_pData->BarCount - 1 ? 2 : 1;
}

bool CSystemFuncs::HistoryDataExist() {
  return m_pData->CurrentData < m_pData->DataCount && m_pData->CurrentBar < m_pData->BarCount;
}

int32_t CSystemFuncs::BarCount() { return m_pData->BarCount; }
int32_t CSystemFuncs::DataSourceSize() { return m_pData->DataCount; }
int32_t CSystemFuncs::MaxBarsBack() { return m_pData->MaxBarsBack; }
std::string CSystemFuncs::Symbol() { return (*m_pData->DataSources)[m_pData->CurrentData].Symbol; }
std::string CSystemFuncs::GetUserID() { return sysfuncs::GetSFEnv()->GetUserID(); }
