# Network adapters, teams and VLANs as objects, by way of quilletctl --json.
Set-StrictMode -Version 3.0

# The program: that of the same package, else that in the path. What has to stand before every command, such as
# ["--machine=web01"], is a list in JSON in $env:QUILLETCTL_OPTIONS.
$Program = Join-Path $PSScriptRoot '..\..\bin\quilletctl.exe'
if (-not (Test-Path -LiteralPath $Program)) { $Program = 'quilletctl' }

# Every command line that this module runs; what stands in braces is given by the caller.
$Commands = @{
    AdapterList    = 'adapter list'
    AdapterShow    = 'adapter show -- {Name}'
    TeamList       = 'team list'
    TeamShow       = 'team show -- {Name}'
    VlanList       = 'vlan list'
    SettingList    = 'setting list --of {Of} -- {Owner}'
    SettingGet     = 'setting get --of {Of} -- {Owner} {Caption}'
    SettingSet     = 'setting set --of {Of} -- {Owner} {Caption} {Value}'
    ConfigShow     = 'config show'
    ConfigShowSome = 'config show {Pattern}'
    ConfigValidate = 'config validate -'
    ConfigDiff     = 'config diff -'
    ConfigApply    = 'config apply - --yes'
    ConfigKeep     = 'config apply - --yes --no-rollback'
}

# A word as the rules of Windows for command lines have it.
function ConvertTo-QuilletWord([string] $Word) {
    if ($Word -ne '' -and $Word -notmatch '[\s"]') { return $Word }
    $escaped = $Word -replace '(\\*)"', '$1$1\"'
    $escaped = $escaped -replace '(\\+)$', '$1$1'
    return '"' + $escaped + '"'
}

# What quilletctl answers. A failure ends the caller with an error that has the provider's code.
function Invoke-Quillet {
    param(
        [Parameter(Mandatory)] [string] $Command,
        [hashtable] $Values = @{},
        [string] $Document = '',
        [int[]] $Accept = @(0)
    )
    $words = @('--json')
    if ($env:QUILLETCTL_OPTIONS) { $words += @($env:QUILLETCTL_OPTIONS | ConvertFrom-Json) }
    foreach ($word in $Commands[$Command].Split(' ')) {
        if ($word -match '^\{(\w+)\}$') { $words += [string[]] $Values[$Matches[1]] } else { $words += $word }
    }
    $start = New-Object System.Diagnostics.ProcessStartInfo
    $start.FileName = $Program
    $start.Arguments = ($words | ForEach-Object { ConvertTo-QuilletWord $_ }) -join ' '
    $start.UseShellExecute = $false
    $start.RedirectStandardInput = $true
    $start.RedirectStandardOutput = $true
    $start.RedirectStandardError = $true
    $start.StandardOutputEncoding = New-Object System.Text.UTF8Encoding $false
    $start.StandardErrorEncoding = $start.StandardOutputEncoding
    $process = [System.Diagnostics.Process]::Start($start)
    # Both streams are read while the document is written: none of them may fill up and keep the program.
    $output = $process.StandardOutput.ReadToEndAsync()
    $errors = $process.StandardError.ReadToEndAsync()
    $bytes = $start.StandardOutputEncoding.GetBytes($Document)
    try {
        $process.StandardInput.BaseStream.Write($bytes, 0, $bytes.Length)
        # Closing the writer over it could write a mark of its encoding behind the document.
        $process.StandardInput.BaseStream.Close()
    } catch [System.IO.IOException] {
        Write-Debug 'quilletctl ended before it read the document'
    }
    $process.WaitForExit()
    $status = $process.ExitCode
    $answer = $null
    try { $answer = $output.Result | ConvertFrom-Json } catch { Write-Debug $output.Result }
    if ($null -ne $answer -and $Accept -contains $status) { return $answer }

    $message = $errors.Result.Trim()
    $code = "status $status"
    if ($null -ne $answer -and $answer.PSObject.Properties['error']) {
        $message = $answer.error.message
        if ($answer.error.code) { $code = $answer.error.code }
    } elseif ($null -ne $answer -and $answer.PSObject.Properties['failure'] -and $answer.failure) {
        $message = $answer.failure
        if ($answer.code) { $code = $answer.code }
    } elseif ($null -ne $answer -and $answer.PSObject.Properties['problems']) {
        $message = $answer.problems -join '; '
    }
    $exception = New-Object System.InvalidOperationException "quilletctl: $message"
    $exception.Data['Status'] = $status
    $exception.Data['Code'] = $code
    $exception.Data['Answer'] = $answer
    $record = New-Object System.Management.Automation.ErrorRecord $exception, "Quillet,$code", 'InvalidResult', $Command
    throw $record
}

# A document as text: what a file says, a text as it is, an object as JSON.
function ConvertTo-QuilletDocument($InputObject, [string] $Path) {
    if ($Path) { return Get-Content -LiteralPath $Path -Raw -Encoding UTF8 }
    if ($InputObject -is [string]) { return $InputObject }
    return ConvertTo-Json -InputObject $InputObject -Depth 32 -Compress
}

function Get-QuilletAdapter {
    <#
    .SYNOPSIS
    Lists the adapters, or shows some.
    .PARAMETER Name
    A name, object ID, MAC address, or slot and port of an adapter; without it all are listed.
    .EXAMPLE
    Get-QuilletAdapter | Get-QuilletAdapter | Select-Object name, macAddress
    #>
    [CmdletBinding()]
    param([Parameter(Position = 0, ValueFromPipelineByPropertyName)] [string] $Name)
    process {
        if ($Name) { Invoke-Quillet AdapterShow @{ Name = $Name } } else { (Invoke-Quillet AdapterList).adapters }
    }
}

function Get-QuilletTeam {
    <#
    .SYNOPSIS
    Lists the teams, or shows one with its members.
    .PARAMETER Name
    The name of a team; without it all are listed.
    .EXAMPLE
    Get-QuilletTeam | Get-QuilletTeam
    #>
    [CmdletBinding()]
    param([Parameter(Position = 0, ValueFromPipelineByPropertyName)] [string] $Name)
    process {
        if ($Name) { Invoke-Quillet TeamShow @{ Name = $Name } } else { (Invoke-Quillet TeamList).teams }
    }
}

function Get-QuilletVlan {
    <#
    .SYNOPSIS
    Lists the VLANs of all adapters and teams.
    .EXAMPLE
    Get-QuilletVlan | Where-Object number -eq 100
    #>
    [CmdletBinding()]
    param()
    (Invoke-Quillet VlanList).vlans
}

function Get-QuilletSetting {
    <#
    .SYNOPSIS
    Lists the settings of an adapter, team or VLAN, or reads one.
    .PARAMETER Name
    The owner of the settings.
    .PARAMETER Caption
    The caption of a setting, such as *JumboPacket; without it all are listed.
    .PARAMETER Of
    What the owner is.
    .EXAMPLE
    Get-QuilletAdapter | Get-QuilletSetting -Caption '*JumboPacket'
    #>
    [CmdletBinding()]
    param(
        [Parameter(Mandatory, Position = 0, ValueFromPipelineByPropertyName)] [string] $Name,
        [Parameter(Position = 1)] [string] $Caption,
        [ValidateSet('adapter', 'team', 'vlan', 'boot-agent')] [string] $Of = 'adapter'
    )
    process {
        $values = @{ Of = $Of; Owner = $Name; Caption = $Caption }
        if ($Caption) { (Invoke-Quillet SettingGet $values).setting } else { (Invoke-Quillet SettingList $values).settings }
    }
}

function Set-QuilletSetting {
    <#
    .SYNOPSIS
    Sets a setting of an adapter, team or VLAN.
    .PARAMETER Name
    The owner of the setting.
    .PARAMETER Caption
    The caption of the setting, such as *JumboPacket.
    .PARAMETER Value
    The value, as a number or as its text.
    .PARAMETER Of
    What the owner is.
    .EXAMPLE
    Get-QuilletAdapter | Set-QuilletSetting -Caption '*JumboPacket' -Value 9014 -WhatIf
    #>
    [CmdletBinding(SupportsShouldProcess, ConfirmImpact = 'Medium')]
    param(
        [Parameter(Mandatory, Position = 0, ValueFromPipelineByPropertyName)] [string] $Name,
        [Parameter(Mandatory, Position = 1)] [string] $Caption,
        [Parameter(Mandatory, Position = 2)] [string] $Value,
        [ValidateSet('adapter', 'team', 'vlan', 'boot-agent')] [string] $Of = 'adapter'
    )
    process {
        if ($PSCmdlet.ShouldProcess($Name, "set $Caption to $Value")) {
            Invoke-Quillet SettingSet @{ Of = $Of; Owner = $Name; Caption = $Caption; Value = $Value }
        }
    }
}

function Get-QuilletConfig {
    <#
    .SYNOPSIS
    The machine as a document, which Set-QuilletConfig takes.
    .PARAMETER Pattern
    The names of adapters and teams to show; * stands for any text.
    .EXAMPLE
    Get-QuilletConfig | ConvertTo-Json -Depth 32 | Set-Content machine.json -Encoding UTF8
    #>
    [CmdletBinding()]
    param([Parameter(Position = 0)] [ValidatePattern('^[^-]')] [string[]] $Pattern)
    if ($Pattern) { Invoke-Quillet ConfigShowSome @{ Pattern = $Pattern } } else { Invoke-Quillet ConfigShow }
}

function Test-QuilletConfig {
    <#
    .SYNOPSIS
    Whether the machine is as a document says. What stands in the way of the document is an error.
    .PARAMETER InputObject
    The document, as an object or as JSON.
    .PARAMETER Path
    The file of the document.
    .EXAMPLE
    Test-QuilletConfig -Path web.json
    #>
    [CmdletBinding(DefaultParameterSetName = 'Object')]
    [OutputType([bool])]
    param(
        [Parameter(Mandatory, Position = 0, ValueFromPipeline, ParameterSetName = 'Object')] $InputObject,
        [Parameter(Mandatory, ParameterSetName = 'File')] [string] $Path
    )
    process {
        $text = ConvertTo-QuilletDocument $InputObject $Path
        Invoke-Quillet ConfigValidate -Document $text | Out-Null
        @((Invoke-Quillet ConfigDiff -Document $text -Accept 0, 3).changes).Count -eq 0
    }
}

function Compare-QuilletConfig {
    <#
    .SYNOPSIS
    What differs between the machine and a document: an object for each step.
    .PARAMETER InputObject
    The document, as an object or as JSON.
    .PARAMETER Path
    The file of the document.
    .EXAMPLE
    Compare-QuilletConfig -Path web.json | Format-Table subject, what, now, wanted
    #>
    [CmdletBinding(DefaultParameterSetName = 'Object')]
    param(
        [Parameter(Mandatory, Position = 0, ValueFromPipeline, ParameterSetName = 'Object')] $InputObject,
        [Parameter(Mandatory, ParameterSetName = 'File')] [string] $Path
    )
    process {
        $text = ConvertTo-QuilletDocument $InputObject $Path
        $answer = Invoke-Quillet ConfigDiff -Document $text -Accept 0, 3
        foreach ($problem in $answer.problems) { Write-Error "quilletctl: $problem" -ErrorId 'Quillet,problem' }
        foreach ($warning in $answer.warnings) { Write-Warning $warning }
        $answer.changes
    }
}

function Set-QuilletConfig {
    <#
    .SYNOPSIS
    Brings the machine to the state of a document, and back to what it was if a step fails.
    .PARAMETER InputObject
    The document, as an object or as JSON.
    .PARAMETER Path
    The file of the document.
    .PARAMETER NoRollback
    Leave what was changed when a step fails.
    .EXAMPLE
    Set-QuilletConfig -Path web.json
    #>
    [CmdletBinding(DefaultParameterSetName = 'Object', SupportsShouldProcess, ConfirmImpact = 'High')]
    param(
        [Parameter(Mandatory, Position = 0, ValueFromPipeline, ParameterSetName = 'Object')] $InputObject,
        [Parameter(Mandatory, ParameterSetName = 'File')] [string] $Path,
        [switch] $NoRollback
    )
    process {
        $text = ConvertTo-QuilletDocument $InputObject $Path
        $plan = Invoke-Quillet ConfigDiff -Document $text -Accept 0, 3
        foreach ($loss in $plan.losses) { Write-Warning "cannot be undone: $loss" }
        $steps = @($plan.changes | ForEach-Object { $_.step }) -join '; '
        if ($PSCmdlet.ShouldProcess('the network adapters', $(if ($steps) { $steps } else { 'nothing differs' }))) {
            $command = if ($NoRollback) { 'ConfigKeep' } else { 'ConfigApply' }
            Invoke-Quillet $command -Document $text
        }
    }
}
