# Completion of quilletctl for PowerShell. The program tells what can stand at the cursor; where it has nothing to say,
# PowerShell completes the names of files.

Register-ArgumentCompleter -Native -CommandName quilletctl -ScriptBlock {
    param($current, $command, $cursor)
    $before = @($command.CommandElements | Where-Object { $_.Extent.EndOffset -lt $cursor } | ForEach-Object {
        if ($_ -is [System.Management.Automation.Language.StringConstantExpressionAst]) { $_.Value } else { $_.Extent.Text }
    })
    $plain = "$current".Trim("'", '"')
    $words = @($before | Select-Object -Skip 1)
    # Without a place for it, no trace is written: that of the last command stays.
    $place = $env:Temp
    $env:Temp = 'NUL'
    $answer = @(& $before[0] complete --within=500 "--current=$plain" @words 2>$null)
    $env:Temp = $place
    $answer | Select-Object -Skip 1 | ForEach-Object {
        $word, $description = $_ -split "`t", 2
        if ($word.StartsWith($plain, [System.StringComparison]::OrdinalIgnoreCase)) {
            $typed = if ($word -match '^[\w.:/=+-]+$') { $word } else { "'" + ($word -replace "'", "''") + "'" }
            $shown = if ($description) { $description } else { $word }
            [System.Management.Automation.CompletionResult]::new($typed, $word, 'ParameterValue', $shown)
        }
    }
}
