#pragma once

namespace tvx {

// Sets a flag for as long as it lives and puts back what it was, however the scope ends
// (the options window's pattern capture holds the reading cycle this way while it waits).
class HeldFlag {
public:
    explicit HeldFlag(bool* flag) : m_flag(flag), m_before(flag && *flag)
    {
        if (m_flag)
            *m_flag = true;
    }
    ~HeldFlag()
    {
        if (m_flag)
            *m_flag = m_before;
    }
    HeldFlag(const HeldFlag&) = delete;
    HeldFlag& operator=(const HeldFlag&) = delete;

private:
    bool* m_flag;
    bool m_before;
};

} // namespace tvx
