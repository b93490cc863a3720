#pragma once

#include "base/Currency.h"

namespace tvx {

// One point of the rate graph. Rates are in thousands per hour; -1 marks "no value".
class clsGraphFormat {
public:
    // OLE date (days since 30 December 1899); 0 in an empty entry.
    double Time() const { return m_time; }
    void setTime(double time) { m_time = time; }

    Currency RateE() const { return m_rateE; }
    void setRateE(Currency rate) { m_rateE = rate; }

    Currency RateM() const { return m_rateM; }
    void setRateM(Currency rate) { m_rateM = rate; }

    Currency RateAveE() const { return m_rateAveE; }
    void setRateAveE(Currency rate) { m_rateAveE = rate; }

    Currency RateAveM() const { return m_rateAveM; }
    void setRateAveM(Currency rate) { m_rateAveM = rate; }

    void Clear() { *this = clsGraphFormat(); }

    friend bool operator==(const clsGraphFormat&, const clsGraphFormat&) = default;

private:
    double m_time = 0.0;
    Currency m_rateE;
    Currency m_rateM;
    Currency m_rateAveE;
    Currency m_rateAveM;
};

} // namespace tvx
