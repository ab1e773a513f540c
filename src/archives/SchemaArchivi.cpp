#include "archives/SchemaArchivi.h"

namespace kv {

int SchemaArchivio::campo(QStringView nome) const
{
    for (int i = 0; i < campi.size(); ++i)
        if (nome.compare(campi.at(i).nome, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

const IndiceArchivio *SchemaArchivio::indice(QStringView nome) const
{
    for (const IndiceArchivio &i : indici)
        if (nome.compare(i.nome, Qt::CaseInsensitive) == 0)
            return &i;
    return nullptr;
}

const IndiceArchivio *SchemaArchivio::primario() const
{
    for (const IndiceArchivio &i : indici)
        if (i.primario)
            return &i;
    return nullptr;
}

const SchemaArchivio &SchemaDati()
{
    static const SchemaArchivio s{
        QStringLiteral("DATI"),
        {{QStringLiteral("MARCA"), 50},
         {QStringLiteral("MODELLO"), 50},
         {QStringLiteral("FILE"), 20},
         {QStringLiteral("NOTE"), 0}},
        {{QStringLiteral("PER_MARCAMOD"), {QStringLiteral("MARCA"), QStringLiteral("MODELLO")}, false, false},
         {QStringLiteral("PER_FILE"),
          {QStringLiteral("MARCA"), QStringLiteral("MODELLO"), QStringLiteral("FILE")},
          true,
          true}}};
    return s;
}

const SchemaArchivio &SchemaSoftware()
{
    static const SchemaArchivio s{
        QStringLiteral("SOFTWARE"),
        {{QStringLiteral("NomeSW"), 30}, {QStringLiteral("Versione"), 20}, {QStringLiteral("NOTE"), 0}},
        {{QStringLiteral("PER_NOME"), {QStringLiteral("NomeSW")}, true, true}}};
    return s;
}

const SchemaArchivio &SchemaMappe()
{
    static const SchemaArchivio s{QStringLiteral("MAPPE"),
                                  {{QStringLiteral("TipoImpianto"), 3},
                                   {QStringLiteral("Marca"), 50},
                                   {QStringLiteral("Modello"), 50},
                                   {QStringLiteral("File"), 20},
                                   {QStringLiteral("NOTE"), 0}},
                                  {{QStringLiteral("PER_NOME"),
                                    {QStringLiteral("TipoImpianto"), QStringLiteral("Marca"),
                                     QStringLiteral("Modello"), QStringLiteral("File")},
                                    true,
                                    true}}};
    return s;
}

const SchemaArchivio &SchemaArchivioMappe()
{
    static const SchemaArchivio s = [] {
        SchemaArchivio archivio = SchemaMappe();
        archivio.campi.append({QStringLiteral("ScalaLambda"), 3});
        return archivio;
    }();
    return s;
}

QString ChiavePiegata(QStringView testo)
{
    return testo.toString().toUpper();
}

RigaArchivio::RigaArchivio(const SchemaArchivio &schema) : m_schema(&schema), m_valori(schema.campi.size()) {}

std::optional<QString> RigaArchivio::Campo(QStringView nome) const
{
    if (!m_schema)
        return std::nullopt;
    const int i = m_schema->campo(nome);
    return i < 0 ? std::nullopt : m_valori.at(i);
}

QString RigaArchivio::Testo(QStringView nome) const
{
    return Campo(nome).value_or(QString());
}

bool RigaArchivio::Imposta(QStringView nome, std::optional<QString> valore)
{
    if (!m_schema)
        return false;
    const int i = m_schema->campo(nome);
    if (i < 0)
        return false;
    m_valori[i] = std::move(valore);
    return true;
}

} // namespace kv
