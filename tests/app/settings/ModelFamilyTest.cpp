#include "app/settings/ModelFamily.h"

#include <QTest>

using namespace zorel::app::settings;

class ModelFamilyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyTextIsTheOneUsersAndScriptsKnow_data();
    void everyTextIsTheOneUsersAndScriptsKnow();
    void casesAreListedInDisplayOrder();
    void rawValuesLeadBackToTheirFamily();
    void otherTextsLeadToTextLanguage_data();
    void otherTextsLeadToTextLanguage();
};

void ModelFamilyTest::everyTextIsTheOneUsersAndScriptsKnow_data()
{
    QTest::addColumn<int>("family");
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("symbol");
    QTest::addColumn<QString>("hint");

    QTest::newRow("text") << int(ModelFamily::textLanguage) << QStringLiteral("text_language")
                          << QStringLiteral("Text Language Model")
                          << QStringLiteral("Train a causal LM for text completion and chat.")
                          << QStringLiteral("text.alignleft") << QString();
    QTest::newRow("image") << int(ModelFamily::imageGeneration) << QStringLiteral("image_generation")
                           << QStringLiteral("Image Generation")
                           << QStringLiteral("Train a diffusion model to generate images from noise.")
                           << QStringLiteral("photo.on.rectangle.angled")
                           << QStringLiteral(
                                  "Put images in Training Data (PNG, JPEG, WebP). Each image can have "
                                  "a matching .txt caption file.");
    QTest::newRow("multimodal")
        << int(ModelFamily::multimodal) << QStringLiteral("multimodal")
        << QStringLiteral("Text + Image (Multimodal)")
        << QStringLiteral("Train a text-conditioned model for prompt-to-image generation.")
        << QStringLiteral("text.below.photo")
        << QStringLiteral(
               "Put image + caption pairs in Training Data \u2014 e.g. photo.jpg with photo.txt beside it.");
}

void ModelFamilyTest::everyTextIsTheOneUsersAndScriptsKnow()
{
    QFETCH(int, family);
    const auto tested = static_cast<ModelFamily>(family);
    QTEST(rawValue(tested), "raw");
    QTEST(title(tested), "name");
    QTEST(summary(tested), "description");
    QTEST(symbolName(tested), "symbol");
    QTEST(trainingDataHint(tested), "hint");
}

void ModelFamilyTest::casesAreListedInDisplayOrder()
{
    QCOMPARE(allModelFamilies.size(), std::size_t{3});
    QVERIFY(allModelFamilies[0] == ModelFamily::textLanguage);
    QVERIFY(allModelFamilies[1] == ModelFamily::imageGeneration);
    QVERIFY(allModelFamilies[2] == ModelFamily::multimodal);
}

void ModelFamilyTest::rawValuesLeadBackToTheirFamily()
{
    for (const ModelFamily family : allModelFamilies) {
        QVERIFY(modelFamilyFromRawValue(rawValue(family)) == family);
    }
}

void ModelFamilyTest::otherTextsLeadToTextLanguage_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("other letter case") << QStringLiteral("Multimodal");
    QTest::newRow("upper case") << QStringLiteral("IMAGE_GENERATION");
    QTest::newRow("space at the end") << QStringLiteral("multimodal ");
    QTest::newRow("beginning") << QStringLiteral("image");
    QTest::newRow("case name") << QStringLiteral("imageGeneration");
    QTest::newRow("title") << QStringLiteral("Image Generation");
}

void ModelFamilyTest::otherTextsLeadToTextLanguage()
{
    QFETCH(QString, text);
    QVERIFY(modelFamilyFromRawValue(text) == ModelFamily::textLanguage);
}

QTEST_GUILESS_MAIN(ModelFamilyTest)
#include "ModelFamilyTest.moc"
