#pragma once

// A file made read-only for as long as the object lives, even when the tests run as root:
// the thread then gives up, for that time, the capability that lets root write anyway.

#include <QFile>
#include <QString>

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace kv {

class SolaLettura
{
public:
    // Other permissions than read-only may be asked for: none at all, for a file that
    // cannot be read.
    explicit SolaLettura(QString percorso,
                         QFile::Permissions permessi = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther)
        : m_percorso(std::move(percorso))
    {
        m_permessi = QFile::permissions(m_percorso);
        QFile::setPermissions(m_percorso, permessi);
        if (syscall(SYS_capget, &m_testa, m_capacita) == 0) {
            __user_cap_data_struct ridotte[2] = {m_capacita[0], m_capacita[1]};
            ridotte[0].effective &= ~((1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH));
            m_ridotte = syscall(SYS_capset, &m_testa, ridotte) == 0;
        }
    }
    ~SolaLettura()
    {
        if (m_ridotte)
            syscall(SYS_capset, &m_testa, m_capacita);
        QFile::setPermissions(m_percorso, m_permessi);
    }
    SolaLettura(const SolaLettura &) = delete;
    SolaLettura &operator=(const SolaLettura &) = delete;

private:
    QString m_percorso;
    QFile::Permissions m_permessi;
    __user_cap_header_struct m_testa{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct m_capacita[2]{};
    bool m_ridotte = false;
};

} // namespace kv
