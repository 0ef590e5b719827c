#include "library/ModelLibraryStore.h"
#include "tests/backend/bridge/ControllerFixture.h"
#include "tests/support/RunFolders.h"

#include <QSignalSpy>

namespace zorel::tests {

using backend::bridge::BackendController;
using backend::protocol::ArchivedModel;
using library::ModelLibraryStore;

/// The controller's weak link with the real library at its other end.
class BackendLibraryTest : public ControllerFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { endController(); }
    void anArchivedRunAppearsInTheLibrary();
    void changedFoldersAreRescanned();
    void aMissingFolderEmptiesTheLibrary();
    void aLibraryThatIsGoneIsNotAsked();

private:
    ArchivedModel archived(const char *folder) const
    {
        return {m_folders->pathOf(QString::fromLatin1(folder)), QString::fromLatin1(folder), 1, 2.5, 3};
    }

    std::unique_ptr<RunFolders> m_folders;
    std::unique_ptr<ModelLibraryStore> m_library;
};

void BackendLibraryTest::init()
{
    makeController();
    m_folders = std::make_unique<RunFolders>();
    m_settings->setFinishedModelsPath(m_folders->path());
    m_library = std::make_unique<ModelLibraryStore>();
    m_controller->setLibraryStore(m_library.get());
}

void BackendLibraryTest::anArchivedRunAppearsInTheLibrary()
{
    m_folders->addRun(QStringLiteral("first"), completeManifest());
    QSignalSpy modelsChanged(m_library.get(), &ModelLibraryStore::modelsChanged);
    m_controller->apply(archived("first"));
    QCOMPARE(modelsChanged.size(), 1);
    QCOMPARE(m_library->models().size(), 1);
    QCOMPARE(m_library->lastScanPath(), m_folders->path());
    QCOMPARE(m_controller->archivedCount(), 1);

    m_folders->addRun(QStringLiteral("second"), completeManifest());
    m_folders->addRun(QStringLiteral("damaged"), "{");
    m_controller->apply(archived("second"));
    QCOMPARE(m_library->models().size(), 2);
    QCOMPARE(m_library->models().value(0).folderName, QStringLiteral("second"));
    // The count takes every folder with a manifest, whatever is in it.
    QCOMPARE(m_controller->archivedCount(), 3);
}

void BackendLibraryTest::changedFoldersAreRescanned()
{
    RunFolders other;
    other.addRun(QStringLiteral("elsewhere"), "{}");
    m_settings->setFinishedModelsPath(other.path());
    m_controller->sendPaths();
    QCOMPARE(m_library->models().size(), 1);
    QCOMPARE(m_library->models().value(0).path, other.pathOf(QStringLiteral("elsewhere")));
}

void BackendLibraryTest::aMissingFolderEmptiesTheLibrary()
{
    m_folders->addRun(QStringLiteral("run"), "{}");
    m_controller->sendPaths();
    QCOMPARE(m_library->models().size(), 1);
    QCOMPARE(m_controller->archivedCount(), 1);
    m_settings->setFinishedModelsPath(m_folders->pathOf(QStringLiteral("missing")));
    m_controller->sendPaths();
    QVERIFY(m_library->models().isEmpty());
    QCOMPARE(m_controller->archivedCount(), 0);
}

void BackendLibraryTest::aLibraryThatIsGoneIsNotAsked()
{
    m_folders->addRun(QStringLiteral("run"), "{}");
    m_library.reset();
    m_controller->apply(archived("run"));
    QCOMPARE(m_controller->archivedCount(), 1);
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::BackendLibraryTest)
#include "BackendLibraryTest.moc"
