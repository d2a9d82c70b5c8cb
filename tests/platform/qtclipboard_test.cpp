#include "platform/qt/qtclipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <gtest/gtest.h>

#include <memory>

namespace tarnwick {
namespace {

const QString RtfMime = QStringLiteral("text/rtf");
const QString RtfApplicationMime = QStringLiteral("application/rtf");

RichClipboardDocument sampleDocument()
{
    return RichClipboardDocument {
        QStringLiteral("{\\rtf1\\ansi {\\b Quote} caf\\'e9 \\par}"),
        QStringLiteral("<html><body><b>Quote</b> caf&eacute;</body></html>"),
        QStringLiteral("Quote café"),
    };
}

const QMimeData *clipboardData()
{
    return QGuiApplication::clipboard()->mimeData();
}

class QtClipboardTest : public ::testing::Test
{
protected:
    void TearDown() override { QGuiApplication::clipboard()->clear(); }
    QtClipboard m_clipboard;
};

TEST_F(QtClipboardTest, TextIsPutOnTheClipboardAndReadBack)
{
    m_clipboard.setText(QStringLiteral("P-100\tPump"));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("P-100\tPump"));
    EXPECT_EQ(m_clipboard.text(), QStringLiteral("P-100\tPump"));
}

TEST_F(QtClipboardTest, RichDocumentOffersRtfHtmlAndPlainText)
{
    m_clipboard.setRichDocument(sampleDocument());
    const QMimeData *data = clipboardData();
    ASSERT_NE(data, nullptr);
    const QStringList formats = data->formats();
    EXPECT_TRUE(formats.contains(RtfMime));
    EXPECT_TRUE(formats.contains(RtfApplicationMime));
    EXPECT_TRUE(formats.contains(QStringLiteral("text/html")));
    EXPECT_TRUE(formats.contains(QStringLiteral("text/plain")));
    const QByteArray rtf("{\\rtf1\\ansi {\\b Quote} caf\\'e9 \\par}");
    EXPECT_EQ(data->data(RtfMime), rtf);
    EXPECT_EQ(data->data(RtfApplicationMime), rtf);
    EXPECT_EQ(data->html(), sampleDocument().html);
    EXPECT_EQ(m_clipboard.text(), QStringLiteral("Quote café"));
}

TEST_F(QtClipboardTest, PlainTextReplacesARichDocument)
{
    m_clipboard.setRichDocument(sampleDocument());
    m_clipboard.setText(QStringLiteral("plain"));
    const QMimeData *data = clipboardData();
    ASSERT_NE(data, nullptr);
    EXPECT_FALSE(data->hasFormat(RtfMime));
    EXPECT_FALSE(data->hasHtml());
    EXPECT_EQ(m_clipboard.text(), QStringLiteral("plain"));
}

TEST_F(QtClipboardTest, ClearEmptiesTheClipboard)
{
    m_clipboard.setRichDocument(sampleDocument());
    m_clipboard.clear();
    EXPECT_EQ(m_clipboard.text(), QString());
    const QMimeData *data = clipboardData();
    EXPECT_TRUE(data == nullptr || data->formats().isEmpty());
}

TEST(RichDocumentMimeData, RtfIsStoredAsSingleByteText)
{
    RichClipboardDocument document;
    document.rtf = QStringLiteral("{\\rtf1 Zoë}");
    const std::unique_ptr<QMimeData> data(richDocumentMimeData(document));
    const QByteArray rtf = data->data(RtfMime);
    EXPECT_EQ(rtf.size(), 11);
    EXPECT_EQ(rtf, QByteArray("{\\rtf1 Zo\xEB}"));
}

TEST(RichDocumentMimeData, EmptyDocumentStillOffersEveryForm)
{
    const std::unique_ptr<QMimeData> data(richDocumentMimeData(RichClipboardDocument {}));
    EXPECT_TRUE(data->hasFormat(RtfMime));
    EXPECT_TRUE(data->hasFormat(RtfApplicationMime));
    EXPECT_TRUE(data->hasHtml());
    EXPECT_TRUE(data->hasText());
    EXPECT_EQ(data->text(), QString());
}

} // namespace
} // namespace tarnwick
