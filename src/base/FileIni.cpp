#include "base/FileIni.h"

#include "base/Cp1252.h"
#include "base/FileSystem.h"

#include <QFile>
#include <QFileInfo>

#include <cstring>

namespace kv {

namespace {

// Larger than any configuration or language file by far; a bigger file is not ours.
constexpr qint64 DimensioneMassima = 64 * 1024 * 1024;

bool vuoto(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

// Valid UTF-8 (no overlong forms, no surrogates, nothing past U+10FFFF) holding at least
// one multi-byte sequence: plain ASCII stays Windows-1252, as the rule is.
bool sembraUtf8(const QByteArray &byte)
{
    const auto *p = reinterpret_cast<const unsigned char *>(byte.constData());
    const qsizetype n = byte.size();
    bool multiByte = false;
    qsizetype i = 0;
    while (i < n) {
        const unsigned char c = p[i];
        if (c < 0x80) {
            ++i;
            continue;
        }
        int seguito = 0;
        unsigned char minimo = 0x80, massimo = 0xBF; // range of the second byte
        if (c >= 0xC2 && c <= 0xDF) {
            seguito = 1;
        } else if (c >= 0xE0 && c <= 0xEF) {
            seguito = 2;
            if (c == 0xE0)
                minimo = 0xA0;
            else if (c == 0xED)
                massimo = 0x9F;
        } else if (c >= 0xF0 && c <= 0xF4) {
            seguito = 3;
            if (c == 0xF0)
                minimo = 0x90;
            else if (c == 0xF4)
                massimo = 0x8F;
        } else {
            return false;
        }
        if (i + seguito >= n)
            return false;
        if (p[i + 1] < minimo || p[i + 1] > massimo)
            return false;
        for (int k = 2; k <= seguito; ++k) {
            if ((p[i + k] & 0xC0) != 0x80)
                return false;
        }
        multiByte = true;
        i += seguito + 1;
    }
    return multiByte;
}

QString piega(const QString &nome)
{
    return nome.trimmed().toCaseFolded();
}

bool haInterruzioni(const QString &testo)
{
    return testo.contains(u'\n') || testo.contains(u'\r');
}

} // namespace

FileIni::FileIni() = default;

FileIni FileIni::daByte(const QByteArray &byte)
{
    return analizza(byte, nullptr);
}

FileIni FileIni::analizza(const QByteArray &byte, const Codifica *forzata)
{
    FileIni ini;
    ini.m_byte = byte;
    const char *d = byte.constData();
    const qsizetype n = byte.size();

    qsizetype inizio = 0;
    if (n >= 3 && d[0] == '\xEF' && d[1] == '\xBB' && d[2] == '\xBF') {
        ini.m_codifica = Codifica::Utf8ConBom;
        inizio = 3;
    } else {
        ini.m_codifica = sembraUtf8(byte) ? Codifica::Utf8 : Codifica::Windows1252;
    }
    if (forzata)
        ini.m_codifica = *forzata;

    bool stileVisto = false;
    qsizetype corrente = -1; // index: the list grows, pointers into it would not last
    while (inizio < n) {
        const char *a_capo = static_cast<const char *>(memchr(d + inizio, '\n', n - inizio));
        Riga riga;
        riga.inizio = inizio;
        qsizetype fineContenuto = a_capo ? a_capo - d : n;
        if (a_capo) {
            riga.fine = 1;
            if (fineContenuto > inizio && d[fineContenuto - 1] == '\r') {
                --fineContenuto;
                riga.fine = 2;
            }
            if (!stileVisto) {
                ini.m_crlf = riga.fine == 2;
                stileVisto = true;
            }
        }
        riga.lunghezza = fineContenuto - inizio;

        qsizetype p = inizio;
        while (p < fineContenuto && vuoto(d[p]))
            ++p;
        const int indiceRiga = static_cast<int>(ini.m_righe.size());
        if (p == fineContenuto) {
            riga.tipo = TipoRiga::Vuota;
        } else if (d[p] == ';') {
            riga.tipo = TipoRiga::Commento;
        } else if (d[p] == '[') {
            riga.tipo = TipoRiga::Sezione;
            const char *chiusa = static_cast<const char *>(memchr(d + p + 1, ']', fineContenuto - p - 1));
            const qsizetype fineNome = chiusa ? chiusa - d : fineContenuto;
            Sezione sezione;
            sezione.nome = ini.testo(p + 1, fineNome).trimmed();
            sezione.riga = indiceRiga;
            sezione.ultimaPiena = indiceRiga;
            // Only the first section of a name is ever looked at: later ones keep their
            // lines but take no part.
            corrente = ini.m_sezioni.size();
            const QString piegato = sezione.nome.toCaseFolded();
            if (!ini.m_indice.contains(piegato))
                ini.m_indice.insert(piegato, static_cast<int>(corrente));
            ini.m_sezioni.append(sezione);
        } else {
            const char *uguale = static_cast<const char *>(memchr(d + p, '=', fineContenuto - p));
            riga.tipo = TipoRiga::Altro;
            if (uguale) {
                qsizetype fineChiave = uguale - d;
                while (fineChiave > p && vuoto(d[fineChiave - 1]))
                    --fineChiave;
                if (fineChiave > p) {
                    riga.tipo = TipoRiga::Chiave;
                    qsizetype v = uguale - d + 1;
                    while (v < fineContenuto && vuoto(d[v]))
                        ++v;
                    riga.valore = v;
                    // Trimmed again as text: a no-break space is a blank to the look-up too.
                    const QString chiave = ini.testo(p, fineChiave).trimmed();
                    if (corrente >= 0 && !chiave.isEmpty()) {
                        Sezione &s = ini.m_sezioni[corrente];
                        const QString piegata = chiave.toCaseFolded();
                        if (!s.chiavi.contains(piegata)) {
                            s.chiavi.insert(piegata, indiceRiga);
                            s.ordine.append(chiave);
                        }
                    }
                }
            }
        }
        if (corrente >= 0 && riga.tipo != TipoRiga::Vuota && riga.tipo != TipoRiga::Commento)
            ini.m_sezioni[corrente].ultimaPiena = indiceRiga;
        ini.m_righe.append(riga);
        inizio = a_capo ? (a_capo - d) + 1 : n;
    }
    return ini;
}

QString FileIni::testo(qsizetype inizio, qsizetype fine) const
{
    const QByteArrayView parte(m_byte.constData() + inizio, fine - inizio);
    if (m_codifica == Codifica::Windows1252)
        return Cp1252::decodifica(parte);
    return QString::fromUtf8(parte);
}

QByteArray FileIni::inCodifica(const QString &testo) const
{
    if (m_codifica == Codifica::Windows1252)
        return Cp1252::codifica(testo);
    return testo.toUtf8();
}

FileIni FileIni::daFile(const QString &percorso, StatoLettura *stato)
{
    StatoLettura esito = StatoLettura::Errore;
    FileIni ini;
    const QFileInfo info(percorso);
    if (!info.exists() && !info.isSymLink()) {
        esito = StatoLettura::Assente;
    } else if (info.isFile() && info.size() <= DimensioneMassima) {
        QFile file(percorso);
        if (file.open(QIODevice::ReadOnly)) {
            const QByteArray byte = file.read(DimensioneMassima + 1);
            if (file.error() == QFileDevice::NoError && byte.size() <= DimensioneMassima) {
                ini = daByte(byte);
                esito = StatoLettura::Letto;
            }
        }
    }
    if (stato)
        *stato = esito;
    return ini;
}

const FileIni::Sezione *FileIni::trovaSezione(const QString &nome) const
{
    const auto it = m_indice.constFind(piega(nome));
    return it == m_indice.constEnd() ? nullptr : &m_sezioni.at(it.value());
}

QString FileIni::valore(const QString &sezione, const QString &chiave, const QString &predefinito) const
{
    const Sezione *s = trovaSezione(sezione);
    if (!s)
        return predefinito;
    const auto it = s->chiavi.constFind(piega(chiave));
    if (it == s->chiavi.constEnd())
        return predefinito;
    const Riga &riga = m_righe.at(it.value());
    qsizetype fine = riga.inizio + riga.lunghezza;
    while (fine > riga.valore && vuoto(m_byte.at(fine - 1)))
        --fine;
    qsizetype inizio = riga.valore;
    if (fine - inizio >= 2 && m_byte.at(inizio) == '"' && m_byte.at(fine - 1) == '"') {
        ++inizio;
        --fine;
    }
    return testo(inizio, fine);
}

bool FileIni::contiene(const QString &sezione, const QString &chiave) const
{
    const Sezione *s = trovaSezione(sezione);
    return s && s->chiavi.contains(piega(chiave));
}

QStringList FileIni::sezioni() const
{
    QStringList nomi;
    for (qsizetype i = 0; i < m_sezioni.size(); ++i) {
        if (m_indice.value(piega(m_sezioni.at(i).nome)) == i)
            nomi.append(m_sezioni.at(i).nome);
    }
    return nomi;
}

QStringList FileIni::chiavi(const QString &sezione) const
{
    const Sezione *s = trovaSezione(sezione);
    return s ? s->ordine : QStringList();
}

bool FileIni::imposta(const QString &sezione, const QString &chiave, const QString &valore)
{
    if (sezione.isEmpty() || sezione != sezione.trimmed() || haInterruzioni(sezione)
        || sezione.contains(u']'))
        return false;
    if (chiave.isEmpty() || chiave != chiave.trimmed() || haInterruzioni(chiave) || chiave.contains(u'=')
        || chiave.startsWith(u'[') || chiave.startsWith(u';'))
        return false;
    if (haInterruzioni(valore))
        return false;

    const QByteArray aCapo = m_crlf ? QByteArrayLiteral("\r\n") : QByteArrayLiteral("\n");
    const QByteArray valoreCodificato = inCodifica(valore);
    QByteArray nuovi;

    const Sezione *s = trovaSezione(sezione);
    const auto it = s ? s->chiavi.constFind(piega(chiave)) : QHash<QString, int>::const_iterator();
    if (s && it != s->chiavi.constEnd()) {
        // The line keeps the key as spelt there and its blanks up to the value.
        const Riga &riga = m_righe.at(it.value());
        nuovi = m_byte.left(riga.valore);
        nuovi += valoreCodificato;
        nuovi += m_byte.mid(riga.inizio + riga.lunghezza);
    } else if (s) {
        // After the section's last line that holds something, so that blank lines and the
        // comments that open the next section stay where they are.
        const Riga &riga = m_righe.at(s->ultimaPiena);
        const qsizetype dopo = riga.inizio + riga.lunghezza;
        nuovi = m_byte.left(dopo);
        nuovi += aCapo + inCodifica(chiave) + '=' + valoreCodificato;
        nuovi += m_byte.mid(dopo);
    } else {
        nuovi = m_byte;
        if (!m_righe.isEmpty()) {
            const Riga &ultima = m_righe.last();
            if (ultima.fine == 0)
                nuovi += aCapo;
            if (ultima.tipo != TipoRiga::Vuota)
                nuovi += aCapo;
        }
        nuovi += '[' + inCodifica(sezione) + ']' + aCapo;
        nuovi += inCodifica(chiave) + '=' + valoreCodificato + aCapo;
    }

    const bool crlf = m_crlf;
    const Codifica codifica = m_codifica;
    *this = analizza(nuovi, &codifica);
    m_crlf = crlf;
    return true;
}

bool FileIni::salva(const QString &percorso) const
{
    return ScriviFileIntero(percorso, m_byte);
}

QString FileIni::leggi(const QString &percorso, const QString &sezione, const QString &chiave,
                       const QString &predefinito)
{
    StatoLettura stato;
    const FileIni ini = daFile(percorso, &stato);
    if (stato != StatoLettura::Letto)
        return predefinito;
    return ini.valore(sezione, chiave, predefinito);
}

bool FileIni::scrivi(const QString &percorso, const QString &sezione, const QString &chiave,
                     const QString &valore)
{
    StatoLettura stato;
    FileIni ini = daFile(percorso, &stato);
    if (stato == StatoLettura::Errore)
        return false;
    return ini.imposta(sezione, chiave, valore) && ini.salva(percorso);
}

} // namespace kv
