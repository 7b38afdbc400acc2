#include "tests/app/SettingsText.h"

#include <sstream>

namespace test
{

namespace
{

std::ostream& operator<<(std::ostream& stream, const TypedRange& range)
{
    return stream << range.lower << " to " << range.upper;
}

std::ostream& operator<<(std::ostream& stream, const QString& text)
{
    return stream << '"' << text.toStdString() << '"';
}

} // namespace

std::string text_of(const Settings& settings)
{
    std::ostringstream text;
    text << std::boolalpha << "port_name " << settings.port_name << "\nbaud " << settings.baud
         << "\nhalf_duplex " << settings.half_duplex << "\nentry_procedure_wanted "
         << settings.entry_procedure_wanted << "\nversion_request_wanted "
         << settings.version_request_wanted << "\nbootloader_version "
         << settings.bootloader_version << "\nwrite_wanted " << settings.write_wanted
         << "\nwrite_range_wanted " << settings.write_range_wanted << "\nwrite_range "
         << settings.write_range << "\nwrite_file " << settings.write_file << "\nread_wanted "
         << settings.read_wanted << "\nread_range_wanted " << settings.read_range_wanted
         << "\nread_range " << settings.read_range << "\nread_file " << settings.read_file
         << "\nerase_all_wanted " << settings.erase_all_wanted << "\nerase_range_wanted "
         << settings.erase_range_wanted << "\nerase_range " << settings.erase_range
         << "\nverify_wanted " << settings.verify_wanted << "\nverify_file " << settings.verify_file
         << "\nwrite_and_verify_wanted " << settings.write_and_verify_wanted
         << "\nwrite_and_verify_file " << settings.write_and_verify_file << "\nreset_wanted "
         << settings.reset_wanted << "\ninclude_encrypted " << settings.include_encrypted
         << "\ninclude_unencrypted " << settings.include_unencrypted << "\nlog_file "
         << settings.log_file;
    return text.str();
}

} // namespace test
