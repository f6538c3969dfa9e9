#include "zelto/raster/internal/OpenedFile.h"

#include "zelto/raster/internal/PickedSamples.h"

#include "tests/raster/BareDataset.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

using zelto::FileState;
using zelto::test::BareDataset;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;

TEST(OpenedFile, OnlyARegularFileHasAState) {
    const TemporaryFolder folder;
    WriteFile(folder.Path() / "a", "bytes");
    EXPECT_TRUE(FileState::Of(folder.File("a")).has_value());
    EXPECT_FALSE(FileState::Of(folder.File("missing")).has_value());
    EXPECT_FALSE(FileState::Of(folder.Path().string()).has_value());
}

TEST(OpenedFile, AnyDifferenceOfAStateCounts) {
    const FileState state = {1, 2, 3, 4};
    EXPECT_EQ(state, (FileState{1, 2, 3, 4}));
    for (const FileState& other : {FileState{9, 2, 3, 4}, FileState{1, 9, 3, 4},
                                   FileState{1, 2, 9, 4}, FileState{1, 2, 3, 9}})
        EXPECT_FALSE(state == other);
}

TEST(OpenedFile, ThatChangedWhileItWasOpenedIsNotNoted) {
    const TemporaryFolder folder;
    WriteFile(folder.Path() / "a", "bytes");
    const auto before = FileState::Of(folder.File("a"));
    BareDataset image(1, 1, 1);
    image.SetDescription(folder.File("a").c_str());
    zelto::NoteOpened(image, std::nullopt);
    EXPECT_FALSE(zelto::StateAsOpened(image).has_value());
    std::filesystem::resize_file(folder.Path() / "a", 2);
    zelto::NoteOpened(image, before);
    EXPECT_FALSE(zelto::StateAsOpened(image).has_value());
    zelto::NoteOpened(image, FileState::Of(folder.File("a")));
    EXPECT_EQ(zelto::StateAsOpened(image), FileState::Of(folder.File("a")));
    std::filesystem::remove(folder.Path() / "a");
    EXPECT_FALSE(zelto::StateAsOpened(image).has_value());
    EXPECT_TRUE(zelto::NoteClosed(&image).has_value());
    EXPECT_FALSE(zelto::NoteClosed(&image).has_value()) << "it is closed already";
}

TEST(OpenedFile, TheLastOfSeveralHandlesClosesIt) {
    const TemporaryFolder folder;
    WriteFile(folder.Path() / "a", "bytes");
    BareDataset first(1, 1, 1);
    BareDataset second(1, 1, 1);
    for (BareDataset* image : {&first, &second}) {
        image->SetDescription(folder.File("a").c_str());
        zelto::NoteOpened(*image, FileState::Of(folder.File("a")));
    }
    EXPECT_FALSE(zelto::NoteClosed(&first).has_value());
    EXPECT_EQ(zelto::NoteClosed(&second), FileState::Of(folder.File("a")));
}

TEST(SampledWindow, AnyDifferenceCounts) {
    using zelto::SampledWindow;
    const SampledWindow window = {{1, 2, 3, 4}, 5, 6};
    EXPECT_TRUE(window == (SampledWindow{{1, 2, 3, 4}, 5, 6}));
    for (const SampledWindow& other :
         {SampledWindow{{9, 2, 3, 4}, 5, 6}, SampledWindow{{1, 9, 3, 4}, 5, 6},
          SampledWindow{{1, 2, 9, 4}, 5, 6}, SampledWindow{{1, 2, 3, 9}, 5, 6},
          SampledWindow{{1, 2, 3, 4}, 9, 6}, SampledWindow{{1, 2, 3, 4}, 5, 9}})
        EXPECT_FALSE(window == other);
}
