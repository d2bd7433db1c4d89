#include <VextilToolkit/VextilConfirmModel.h>
#include <VextilToolkit/VextilToolkitSettings.h>

#include "widgets/tutorial/VextilTutorialFace.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

namespace {

const QString kTranslations = QStringLiteral(VEXTIL_SOURCE_DIR "/translations");

// One .ts file: source text -> translation, with the unfinished or vanished ones marked.
struct TsFile {
    QMap<QString, QString> translations;
    QStringList unfinished;
};

TsFile readTs(const QString &path)
{
    TsFile ts;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return ts;
    QXmlStreamReader xml(&file);
    QString source;
    while (xml.readNextStartElement() || !xml.atEnd()) {
        if (!xml.isStartElement())
            continue;
        if (xml.name() == u"source") {
            source = xml.readElementText();
        } else if (xml.name() == u"translation") {
            const bool finished = xml.attributes().value(QStringLiteral("type")).isEmpty();
            ts.translations.insert(source, xml.readElementText());
            if (!finished)
                ts.unfinished.append(source);
        }
    }
    return ts;
}

QString tsPath(const QString &language)
{
    return kTranslations + (language.isEmpty() ? QStringLiteral("/vextiltoolkit.ts") : QStringLiteral("/vextiltoolkit_%1.ts").arg(language));
}

const QStringList kLanguages{QStringLiteral("de"), QStringLiteral("es"), QStringLiteral("pt_BR")};

// The texts the sources mark for translation today, as lupdate reads them.
QStringList textsInSources()
{
    QTemporaryDir dir;
    const QString out = dir.filePath(QStringLiteral("now.ts"));
    QProcess lupdate;
    lupdate.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    lupdate.start(QStringLiteral(VEXTIL_LUPDATE),
                  {QStringLiteral(VEXTIL_SOURCE_DIR "/src"), QStringLiteral(VEXTIL_SOURCE_DIR "/include"), QStringLiteral("-I"),
                   QStringLiteral(VEXTIL_SOURCE_DIR "/src"), QStringLiteral("-extensions"), QStringLiteral("cpp,h,qml"),
                   QStringLiteral("-locations"), QStringLiteral("none"), QStringLiteral("-silent"), QStringLiteral("-ts"), out});
    if (!lupdate.waitForFinished(60000) || lupdate.exitCode() != 0)
        return {};
    return readTs(out).translations.keys();
}

TEST(TranslationFiles, TheTemplateAndEveryLanguageHoldEveryTextOfTheSources)
{
    const QStringList texts = textsInSources();
    ASSERT_GE(texts.size(), 20) << "lupdate found too few texts";
    EXPECT_EQ(readTs(tsPath({})).translations.keys(), texts)
        << "translations/vextiltoolkit.ts is out of date: run scripts/update-translations.sh";
    for (const QString &language : kLanguages) {
        const TsFile ts = readTs(tsPath(language));
        EXPECT_EQ(ts.translations.keys(), texts) << qPrintable(language);
        EXPECT_TRUE(ts.unfinished.isEmpty()) << qPrintable(language) << ": " << qPrintable(ts.unfinished.join(u'|'));
        for (auto it = ts.translations.cbegin(); it != ts.translations.cend(); ++it)
            EXPECT_FALSE(it.value().trimmed().isEmpty()) << qPrintable(language) << ": " << qPrintable(it.key());
    }
}

TEST(Translations, OneCallPutsALanguageInForceForScreensBuiltAfterwards)
{
    auto *settings = VextilToolkitSettings::sharedInstance();
    EXPECT_EQ(VextilToolkitSettings::availableTranslations(), kLanguages);
    const auto tipsAndTitle = [] {
        VextilTutorialFace tutorial;
        return QStringList{tutorial.topLeftTipLabel()->fullText(), tutorial.bottomRightTipLabel()->fullText(),
                           VextilConfirmModel().getCancelButtonText()};
    };
    const QStringList english = tipsAndTitle();
    for (const QString &language : kLanguages) {
        ASSERT_TRUE(settings->installTranslations(QLocale(language))) << qPrintable(language);
        const auto expected = readTs(tsPath(language)).translations;
        EXPECT_EQ(tipsAndTitle(), (QStringList{expected[english[0]], expected[english[1]], expected[english[2]]}))
            << qPrintable(language);
    }
    // Another region of a shipped language gets that language; English and the unknown get English.
    ASSERT_TRUE(settings->installTranslations(QLocale(QStringLiteral("pt_PT"))));
    EXPECT_EQ(tipsAndTitle()[2], readTs(tsPath(QStringLiteral("pt_BR"))).translations[english[2]]);
    EXPECT_TRUE(settings->installTranslations(QLocale(QStringLiteral("en_GB"))));
    EXPECT_EQ(tipsAndTitle(), english);
    settings->installTranslations(QLocale(QStringLiteral("de")));
    EXPECT_FALSE(settings->installTranslations(QLocale(QStringLiteral("fi"))));
    EXPECT_EQ(tipsAndTitle(), english);
}

// Whether a wrapping label shows its whole text within its height, or ends in an ellipsis.
bool showsAllOf(const VextilLabel *label)
{
    return label->text() == label->fullText() && label->heightForWidth(label->width()) <= label->height();
}

TEST(Translations, TutorialCaptionsFitInThreeLinesOrEndInAnEllipsis)
{
    for (const QString &language : kLanguages) {
        VextilToolkitSettings::sharedInstance()->installTranslations(QLocale(language));
        VextilTutorialFace tutorial;
        tutorial.resize(390, 844);
        tutorial.show();
        for (const VextilLabel *label : {tutorial.topLeftTipLabel(), tutorial.topRightTipLabel(), tutorial.bottomLeftTipLabel(),
                                         tutorial.bottomRightTipLabel()})
            EXPECT_TRUE(showsAllOf(label)) << qPrintable(language) << ": " << qPrintable(label->fullText());
    }
    VextilTutorialFace tutorial;
    tutorial.resize(390, 844);
    tutorial.show();
    VextilLabel *label = tutorial.topLeftTipLabel();
    const QString longCaption = QStringLiteral("Find a place with soft, even daylight that falls on the whole face from the front");
    label->setText(longCaption);
    EXPECT_EQ(label->fullText(), longCaption);
    EXPECT_TRUE(label->text().endsWith(QChar(0x2026))) << qPrintable(label->text());
    EXPECT_EQ(label->text().count(u'\n'), 2);
    EXPECT_LE(label->heightForWidth(label->width()), label->height());
}

}  // namespace
