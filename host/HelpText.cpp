// The texts of --help, --version, the man page and the completion of the shell.
#include <utility>

#include "CommandLine.h"
#include "FileTypes.h"
#include "OptionTable.h"
#include "ProgramName.h"
#include "options/ProgramManual.h"

namespace {

using ProgramOptions::Group;
using ProgramOptions::Manual;

constexpr std::pair<OptionGroup, const char*> kTitles[] = {
    {OptionGroup::Results, "Without a display"},
    {OptionGroup::Imports, "Imports; --skip and --confidence of scans"},
    {OptionGroup::Places, "Places of the files"},
    {OptionGroup::Markers, "Markers, in the window and in the file; each may be repeated"},
    {OptionGroup::Pictures,
     "Pictures, in the window and in the file; --size, --view and --zoom also for --pick and --cut"},
    {OptionGroup::Clipping,
     "Clipping of objects, with --screenshot, --save-cuts and --cut; free points, lines and needles are shown whole"},
    {OptionGroup::Cuts, "Cuts of objects, with --screenshot, --info, --save-cuts and --export"},
    {OptionGroup::Alignment, "Alignment of files, without a window and without OpenGL"},
    {OptionGroup::Window, "In the window"},
    {OptionGroup::Drawing, "Without a window"},
    {OptionGroup::General, ""},
};

/// No option: it ends them.
constexpr ProgramOptions::Row kEnd = {.name = "--", .help = "what follows are file names"};

Manual ManualOf() {
    Manual manual{
        .program = kProgramName,
        .version = kProgramVersion,
        .summary = "show optical scans and meshes in a window, as a picture, or as numbers",
        .usage = {"[options] FILE...", "--screenshot OUT [options] FILE...", "--capture OUT [options] FILE...",
                  "--pick X,Y [--json] [options] FILE...", "--info [--json] [options] FILE...",
                  "--convert [options] IN OUT",
                  ("--cut MODE:X,Y;X,Y;... [options]\n"
                   "[--save-cuts | --export OUT | --screenshot OUT | --info [--json]] FILE..."),
                  ("--align PAIRS.txt [--json] [--save-transforms OUT.json] [options]\n"
                   "--moving FILE... --fixed FILE...")},
        .description =
            "Shows optical scans ({scans} files) and meshes ({meshes}) in a window, as a picture, or "
            "as numbers. A FILE may be a folder: its files of these types and those below it; or @LIST: the files and "
            "folders that the text file LIST names, one a line.",
        .groups = {},
        .sections = {{"Exit status",
                      "0 when every file added what it holds and all that was asked for was written, 1 when not, or "
                      "when no --pick hit a surface, --clip-auto found no height, no --cut changed an object (nothing "
                      "is saved or exported then), --save-cuts wrote no file, --align found no transform or "
                      "--transforms has none for any of the files (nothing is printed or written then), 2 for wrong "
                      "usage."}},
        .examples = {{"scenepane --screenshot part.png --view front --fit part.ply",
                      "A picture of a mesh from its front, as large as it fits."},
                     {"scenepane --screenshot 'part-{view}.jpg' --views all --samples 4 scans/",
                      "Eight pictures of all scans of a folder, with smooth edges."},
                     {"scenepane --info --json @list.txt", "What the files hold that a list names, as JSON."},
                     {"scenepane --convert scan.pcm scan.stl", "A scan as a mesh."}},
        .seeAlso = "simulate-scans(1)",
        .replacements = {{"{scans}", ExtensionList(IsImportedScan, "and")},
                         {"{meshes}", ExtensionList(IsImportedMesh, "and")},
                         {"{written}", ExtensionList(IsExported, "or")}}};
    for (const auto& [id, title] : kTitles) {
        Group group{title, {}};
        for (const Option& option : OptionTable())
            if (option.group == id) group.rows.push_back(&option.row);
        manual.groups.push_back(std::move(group));
    }
    manual.groups.back().rows.push_back(&kEnd);
    return manual;
}

}  // namespace

std::string HelpText() { return ProgramOptions::HelpText(ManualOf()); }

std::string ManPage() { return ProgramOptions::ManPage(ManualOf()); }

std::string BashCompletion() { return ProgramOptions::BashCompletion(ManualOf()); }

std::string VersionText() { return std::string(kProgramName) + ' ' + kProgramVersion + '\n'; }
