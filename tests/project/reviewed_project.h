#pragma once

#include <generalutilities/extview/export_options.h>

#include "extview/rtf/rtf_import.h"
#include "extview/rtf_table_export.h"
#include "project/project_files.h"

/// A project with its exported file, for what happens when the file comes back.
namespace generalutilities {

class ReviewedProject : public ::testing::Test {
  protected:
    void Create(std::vector<NewProjectRow> rows, std::vector<std::int32_t> languages = {1036}) {
        CreateProject(folder.Path(u"p"),
                      Sources(std::make_unique<FixedRows>(std::move(languages), std::move(rows))),
                      {});
        project = OpenProject(folder.Path(u"p"));
        ASSERT_NE(project, nullptr);
        CExternalViewRTFExport exporter;
        ASSERT_EQ(exporter.RunExport(*project, File(), AllFiles, 1036,
                                     ShowIdColumn | ShowStatusColumn | ShowStatusValue, u"", {}),
                  S_OK);
    }

    std::u16string File() const { return folder.Path(u"review.rtf"); }

    /// What the reviewer does: replaces a text of the file.
    void Edit(const std::string& before, const std::string& after) {
        std::string bytes = ReadFile(File());
        const std::size_t place = bytes.find(before);
        ASSERT_NE(place, std::string::npos) << before;
        WriteFile(File(), bytes.replace(place, before.size(), after));
    }

    void Import(std::int32_t langId = 1036) {
        ASSERT_EQ(CRTFImport().RunImport(*project, File(), langId), S_OK);
    }

    std::u16string Stored(std::u16string_view column, std::u16string_view id) {
        return QueryText(*project, u"SELECT " + std::u16string(column) +
                                       u" FROM Pairs WHERE ID = '" + std::u16string(id) + u"'");
    }

    TemporaryFolder folder;
    std::unique_ptr<Database> project;
};

}  // namespace generalutilities
