#pragma once

// Texts the publishing sheets show and the names they give, defined once.
namespace tl::publish::texts {

inline constexpr char CompileTitle[] = "Compile Documents";
inline constexpr char CompilePDFTitle[] = "Compile Documents to PDF";
inline constexpr char NothingToCompile[] =
    "Selection does not contain any documents that can be compiled (plain text, formatted "
    "document, Markdown etc.)";
inline constexpr char CompileDetails[] =
    "Add details for the new document created by compiling the selected documents.";
inline constexpr char CompiledDocuments[] = "Compiled documents";
inline constexpr char Create[] = "Create";
inline constexpr char Cancel[] = "Cancel";
inline constexpr char OK[] = "OK";

inline constexpr char EBookTitle[] = "Create eBook";
inline constexpr char EBookDetails[] =
    "Add details for the ebook which will be created from the selected documents.";
// With the present year.
inline constexpr char EBookRights[] = "\u00A9%1 - All Rights Reserved.";
inline constexpr char EBookAuthorSetting[] = "eBookAuthor";

} // namespace tl::publish::texts
