$$ErrorActionPreference = 'Stop'

$$arguments = @{
    packageName    = $$env:ChocolateyPackageName
    fileType       = 'msi'
    url64bit       = '$downloads/$installer'
    checksum64     = '$installer_sha256'
    checksumType64 = 'sha256'
    silentArgs     = '/qn /norestart'
    validExitCodes = @(0, 1641, 3010)
}
Install-ChocolateyPackage @arguments
