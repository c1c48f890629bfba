# shellcheck shell=bash
# Manifests of a release for winget and Chocolatey. Sourced after common.sh, msi.sh and release.sh.
# shellcheck disable=SC2154

# make_manifests PACKAGE TARGET: the manifests of a package, in folders below TARGET. Without all that the publisher has to
# fill in there are none.
make_manifests() {
    local name=${1##*/} sum empty
    local -a keys=(maker support_url product_url download_url license license_url)
    if ! empty=$(require_publisher "${keys[@]}"); then
        say "no winget and Chocolatey manifests: packaging/publisher.conf has no $empty"
        return
    fi
    if [[ -n ${sign_unsigned_kit:-} ]]; then
        say "no winget and Chocolatey manifests: the kit is not signed"
        return
    fi
    sum=$(sha256sum -- "$1")
    sum=${sum%% *}
    mkdir -p -- "$2/winget" "$2/chocolatey/tools"
    winget_version >"$2/winget/$(winget_identifier).yaml"
    winget_installer "$name" "$sum" >"$2/winget/$(winget_identifier).installer.yaml"
    winget_locale >"$2/winget/$(winget_identifier).locale.en-US.yaml"
    chocolatey_package >"$2/chocolatey/morvix.nuspec"
    chocolatey_installation "$name" "$sum" >"$2/chocolatey/tools/chocolateyinstall.ps1"
}

summary='Installs the drivers of Norda network adapters'

winget_identifier() { printf '%s.Morvix' "$(publisher maker)"; }

# winget_manifest TYPE: the lines that each manifest has, around those on the standard input.
winget_manifest() {
    printf 'PackageIdentifier: "%s"\nPackageVersion: "%s"\n' "$(winget_identifier)" "$(product_version)"
    cat
    printf 'ManifestType: "%s"\nManifestVersion: "1.6.0"\n' "$1"
}

winget_version() { winget_manifest version <<<'DefaultLocale: "en-US"'; }

winget_installer() {
    winget_manifest installer <<END
InstallerType: "msi"
Scope: "machine"
ElevationRequirement: "elevationRequired"
UpgradeBehavior: "install"
UnsupportedOSArchitectures: ["x86", "arm", "arm64"]
ReleaseDate: "$(TZ=UTC date -d "@$(source_date)" +%Y-%m-%d)"
ProductCode: "{$(product_code "$(product_version)")}"
AppsAndFeaturesEntries:
  - DisplayName: "Morvix"
    Publisher: "$(publisher maker)"
    DisplayVersion: "$(product_version)"
    ProductCode: "{$(product_code "$(product_version)")}"
    UpgradeCode: "{$msi_upgrade_code}"
Installers:
  - Architecture: "x64"
    InstallerUrl: "$(publisher download_url)/$1"
    InstallerSha256: "${2^^}"
END
}

winget_locale() {
    winget_manifest defaultLocale <<END
PackageLocale: "en-US"
Publisher: "$(publisher maker)"
PublisherUrl: "$(publisher product_url)"
PublisherSupportUrl: "$(publisher support_url)"
PackageName: "Morvix"
PackageUrl: "$(publisher product_url)"
License: "$(publisher license)"
LicenseUrl: "$(publisher license_url)"
ShortDescription: "$summary"
Tags: ["driver", "network"]
END
}

chocolatey_package() {
    cat <<END
<?xml version="1.0" encoding="utf-8"?>
<package xmlns="http://schemas.microsoft.com/packaging/2015/06/nuspec.xsd">
  <metadata>
    <id>morvix</id>
    <version>$(product_version)</version>
    <title>Morvix</title>
    <authors>$(publisher maker)</authors>
    <projectUrl>$(publisher product_url)</projectUrl>
    <licenseUrl>$(publisher license_url)</licenseUrl>
    <requireLicenseAcceptance>false</requireLicenseAcceptance>
    <summary>$summary</summary>
    <description>$summary, and records for each family of adapters which driver is bound. For 64-bit Windows on x64.</description>
    <tags>driver network admin</tags>
  </metadata>
  <files>
    <file src="tools\\**" target="tools" />
  </files>
</package>
END
}

chocolatey_installation() {
    cat <<END
\$ErrorActionPreference = 'Stop'
\$packageArgs = @{
    packageName    = \$env:ChocolateyPackageName
    fileType       = 'msi'
    url64bit       = '$(publisher download_url)/$1'
    checksum64     = '$2'
    checksumType64 = 'sha256'
    silentArgs     = '/qn /norestart'
    validExitCodes = @(0, 3010)
}
Install-ChocolateyPackage @packageArgs
END
}
