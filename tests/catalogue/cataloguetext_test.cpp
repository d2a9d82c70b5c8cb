#include "catalogue/cataloguetext.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

QString fromCodes(std::initializer_list<char16_t> codes)
{
    QString text;
    for (const char16_t code : codes)
        text += QChar(code);
    return text;
}

TEST(CatalogueTextTest, ValidUtf8IsReadAsUtf8)
{
    EXPECT_EQ(decodeCatalogueBytes(QByteArray("Caf\xc3\xa9 \xe8\x9e\xba")),
        fromCodes({ 'C', 'a', 'f', 0xE9, ' ', 0x87BA }));
    EXPECT_EQ(decodeCatalogueBytes(QByteArray("plain")), QStringLiteral("plain"));
    EXPECT_EQ(decodeCatalogueBytes(QByteArray()), QString());
}

TEST(CatalogueTextTest, OtherBytesAreReadAsWindows1252)
{
    // é ü € and an en dash, as the earlier program wrote them.
    EXPECT_EQ(decodeCatalogueBytes(QByteArray("\xe9\xfc\x80\x96")),
        fromCodes({ 0xE9, 0xFC, 0x20AC, 0x2013 }));
    // A UTF-8 sequence cut off at the end is not UTF-8.
    EXPECT_EQ(decodeCatalogueBytes(QByteArray("a\xe8\x9e")), fromCodes({ 'a', 0xE8, 0x017E }));
}

TEST(CatalogueTextTest, EveryByteReadsAsOneCharacterAndWritesBackTheSame)
{
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all += char(byte);
    const QString text = decodeCatalogueBytes(all);
    ASSERT_EQ(text.size(), 256);
    EXPECT_FALSE(text.contains(QChar(QChar::ReplacementCharacter)));
    // The five bytes Windows-1252 leaves undefined keep their own value as characters.
    for (const char16_t undefined : { 0x81, 0x8D, 0x8F, 0x90, 0x9D })
        EXPECT_EQ(text.at(undefined).unicode(), undefined);
    EXPECT_EQ(text.at(0x9F).unicode(), 0x0178);
    EXPECT_EQ(encodeCatalogueText(text), all);
}

TEST(CatalogueTextTest, TextThatFitsIsWrittenAsWindows1252)
{
    EXPECT_EQ(encodeCatalogueText(fromCodes({ 0xE9, 0xFC, 0x20AC, 0x2013, 'x' })),
        QByteArray("\xe9\xfc\x80\x96x"));
    EXPECT_EQ(encodeCatalogueText(QStringLiteral("A-100")), QByteArray("A-100"));
}

TEST(CatalogueTextTest, EveryCharacterThatFitsGoesOutAsWindows1252InACatalogueLine)
{
    // Each of the 256 characters, undefined bytes, DEL, CR and LF included, in a line of the
    // file next to field ends and the line end.
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all += char(byte);
    const QString table = decodeCatalogueBytes(all);
    for (int byte = 0; byte < 256; ++byte) {
        const QString ch = table.mid(byte, 1);
        const QString line =
            QStringLiteral("P-1\x7f\x7f\x7f") + ch + QStringLiteral("x\x7f\x7f\x7f\r\n");
        const QByteArray bytes = encodeCatalogueText(line);
        EXPECT_EQ(bytes.size(), line.size()) << "byte " << byte;
        EXPECT_EQ(decodeCatalogueBytes(bytes), line) << "byte " << byte;
    }
    const QString catalogue = QStringLiteral("M\u00fcller \u2013 5 St\u00fcck \u20ac 12,50 \u00a9 "
                                             "\u2122 \u00bd\" \u00d8 12 mm\x7f\x7f\x7f\r\n");
    EXPECT_EQ(encodeCatalogueText(catalogue).size(), catalogue.size());
}

TEST(CatalogueTextTest, TextWithOtherCharactersIsWrittenAsUtf8)
{
    const QString text = fromCodes({ 0x87BA, 0x4E1D, 0x5200, ' ', 0xE9 });
    const QByteArray bytes = encodeCatalogueText(text);
    EXPECT_EQ(bytes, QByteArray("\xe8\x9e\xba\xe4\xb8\x9d\xe5\x88\x80 \xc3\xa9"));
    EXPECT_EQ(decodeCatalogueBytes(bytes), text);
}

TEST(CatalogueTextTest, Windows1252BytesThatLookLikeUtf8AreWrittenAsUtf8)
{
    // "Ã©" in Windows-1252 is C3 A9, which would read back as "é".
    const QString text = fromCodes({ 0xC3, 0xA9 });
    const QByteArray bytes = encodeCatalogueText(text);
    EXPECT_EQ(bytes, QByteArray("\xc3\x83\xc2\xa9"));
    EXPECT_EQ(decodeCatalogueBytes(bytes), text);
}

TEST(CatalogueTextTest, ByteOrderMarkIsDroppedButAnInitialMarkCharacterSurvives)
{
    EXPECT_EQ(decodeCatalogueBytes(QByteArray("\xef\xbb\xbf"
                                              "A-1")),
        QStringLiteral("A-1"));
    const QString text = fromCodes({ 0xFEFF, 'A' });
    EXPECT_EQ(decodeCatalogueBytes(encodeCatalogueText(text)), text);
}

TEST(CatalogueTextTest, WithoutFieldEndCharactersRemovesEveryDel)
{
    EXPECT_EQ(withoutFieldEndCharacters(QStringLiteral("a\x7f\x7f\x7f"
                                                       "b\x7f"
                                                       "c")),
        QStringLiteral("abc"));
    EXPECT_EQ(withoutFieldEndCharacters(QStringLiteral("\x7f")), QString());
    EXPECT_EQ(withoutFieldEndCharacters(QStringLiteral("no change\r\n")),
        QStringLiteral("no change\r\n"));
}

} // namespace
} // namespace tarnwick
