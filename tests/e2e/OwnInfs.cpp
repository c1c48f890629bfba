#include "OwnInfs.h"

#include "Environment.h"

std::string InfText(const InfContent& content)
{
    std::string text = "[Version]\r\nSignature=\"" + content.signature +
                       "\"\r\nClass=Net\r\nClassGUID={4d36e972-e325-11ce-bfc1-08002be10318}\r\nProvider=%Mfg%\r\n"
                       "DriverVer=03/01/2012,1.2.3.4\r\n\r\n[Manufacturer]\r\n%Mfg%=" +
                       content.manufacturer + ",NTamd64\r\n\r\n[" + kModelSection + "]\r\n";
    for (const std::string& id : content.ids) {
        text += "%Nic.DeviceDesc%=Nic.ndi, PCI\\" + id + "\r\n";
    }
    return text + "\r\n[Nic.ndi]\r\nCharacteristics=0x84\r\n\r\n[Strings]\r\nMfg=\"Norda\"\r\nNic.DeviceDesc=\"" +
           kDeviceDescription + "\"\r\n";
}

std::string InfFor(const std::string& id)
{
    return InfText({.ids = {id}});
}

std::string AsUnicodeFile(const std::string& text)
{
    std::string file = "\xFF\xFE";
    for (const char c : text) {
        file += c;
        file += '\0';
    }
    return file;
}

DoubleRun::DoubleRun()
{
    Folder().UseDouble("NetInst.dll");
    Folder().WriteSetupIni({std::string("InfSectionName=") + kModelSection, "InfDir=Inf"});
}

std::string DoubleRun::InfInUpperCase(const std::string& inf)
{
    return UpperCase(Folder().At(inf));
}

std::string DoubleRun::InstallLine(const std::string& inf, const std::string& deviceId)
{
    const std::string path = InfInUpperCase(inf);
    return "InstallForRecord family=[Windows Vista] inf=[" + path + "] id=[PCI\\" + deviceId + "] flags=0 source=[" +
           path + "]";
}
