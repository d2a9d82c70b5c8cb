#include "exchange/compounddocument.h"

#include <QString>

#include <gsf/gsf-infile-msole.h>
#include <gsf/gsf-infile.h>
#include <gsf/gsf-input-memory.h>
#include <gsf/gsf-input.h>

#include <memory>

namespace tarnwick {

namespace {

struct GObjectRelease
{
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename T> using GsfPointer = std::unique_ptr<T, GObjectRelease>;

/// libgsf warns on standard error about the damage it meets (and reports the checks a damaged
/// directory fails as critical); a damaged file is this program's ordinary business, reported
/// by the result alone.
void quietCompoundDocumentWarnings()
{
    static const bool quiet = [] {
        const auto levels = GLogLevelFlags(G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING
            | G_LOG_LEVEL_MESSAGE | G_LOG_LEVEL_INFO | G_LOG_LEVEL_DEBUG);
        const GLogFunc ignore = [](const gchar *, GLogLevelFlags, const gchar *, gpointer) {};
        g_log_set_handler("libgsf:msole", levels, ignore, nullptr);
        // The storage itself warns without a domain of its own about a child it cannot open.
        g_log_set_handler(nullptr, GLogLevelFlags(G_LOG_LEVEL_WARNING), ignore, nullptr);
        return true;
    }();
    Q_UNUSED(quiet);
}

/// The child of the root storage whose name is name, letter case aside.
GsfPointer<GsfInput> childStream(GsfInfile *root, std::string_view name)
{
    const QString wanted = QString::fromLatin1(name.data(), qsizetype(name.size()));
    const int count = gsf_infile_num_children(root);
    for (int i = 0; i < count; ++i) {
        const char *childName = gsf_infile_name_by_index(root, i);
        if (childName != nullptr
            && QString::fromUtf8(childName).compare(wanted, Qt::CaseInsensitive) == 0)
            return GsfPointer<GsfInput>(gsf_infile_child_by_index(root, i));
    }
    return nullptr;
}

} // namespace

std::optional<QByteArray> readCompoundStream(QByteArrayView bytes, std::string_view name)
{
    if (bytes.size() < 512
        || QByteArrayView(bytes.data(), 8) != QByteArrayView(CompoundDocumentSignature, 8))
        return std::nullopt;
    quietCompoundDocumentWarnings();
    GsfPointer<GsfInput> input(gsf_input_memory_new(
        reinterpret_cast<const guint8 *>(bytes.data()), gsf_off_t(bytes.size()), FALSE));
    if (!input)
        return std::nullopt;
    GError *error = nullptr;
    GsfPointer<GsfInfile> root(gsf_infile_msole_new(input.get(), &error));
    if (error != nullptr)
        g_error_free(error);
    if (!root)
        return std::nullopt;
    const GsfPointer<GsfInput> stream = childStream(root.get(), name);
    if (!stream)
        return std::nullopt;
    const gsf_off_t size = gsf_input_size(stream.get());
    if (size < 0 || size > gsf_off_t(bytes.size()))
        return std::nullopt;
    QByteArray data(qsizetype(size), Qt::Uninitialized);
    if (size > 0
        && gsf_input_read(stream.get(), std::size_t(size), reinterpret_cast<guint8 *>(data.data()))
            == nullptr)
        return std::nullopt;
    return data;
}

} // namespace tarnwick
