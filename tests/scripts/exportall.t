# SPDX-License-Identifier: Apache-2.0
# exportall: the files it delivers, the command behind them, failures and stops.
use strict;
use warnings;
use Cwd 'abs_path';
use File::Path qw(make_path remove_tree);
use File::Temp 'tempdir';
use FindBin;
use lib $FindBin::Bin;
use JSON::PP;
use ScriptTest qw(put get);
use Test::More;
use Time::HiRes qw(sleep time);

my $installation = abs_path("$FindBin::Bin/../../installation");
my $bin = "$installation/mray/bin";
my $dir = abs_path(tempdir(CLEANUP => 1));
my $work = "$dir/work dir";
make_path("$work/sub", "$dir/there", "$dir/taken.frag", "$dir/tools");
delete @ENV{grep { /^TAVRN_/ } keys %ENV};
$ENV{TAVRN_WORKDIR} = $work;
$ENV{TAVRN_LIB} = "$installation/mray";
$ENV{TAVRN_KILLFILE} = "$dir/kill";
chdir $dir;

sub make {
	my ($type) = @_;
	$ENV{TAVRN_RENOPTS} = put("$dir/options", "setenv TAVRN_SHADER_TYPE \"$type\"\r\n");
	put("$work/codegenfile", "Help\n{\n>A demo.\n}\n\nArgName Ks\n{\n    Stow 0\n    Lock 0\n    Pin 0\n    BoxTitle Metal\n"
		. "    ButtonTitle gloss\n    Comments\n    float 0.5\n    MinMax 0 1\n}\n\nEndArginfo\n#version 330 core\n"
		. "//\@prelude surface\n//\@arguments\nvoid main()\n{\n    tvColor = vec4(Ks);\n}\n");
	system("$bin/codefilter demo '$work/demo' <'$work/codegenfile'") == 0 or die;
}

# Starts exportall as the program does; gives its process and its output's pipe.
sub start {
	my (@words) = @_;
	my $pid = open(my $said, '-|') // die;
	if (!$pid) {
		setpgrp;
		open STDERR, '>&', \*STDOUT;
		open STDIN, '<', '/dev/zero';
		exec "$installation/bin/PerlExec", "$bin/exportall", @words;
	}
	return ($pid, $said);
}

# The processes that one has started.
sub children {
	my ($pid) = @_;
	return grep { (get("/proc/$_/stat") // '') =~ /\) \w $pid / } map { m{(\d+)$} } glob '/proc/[0-9]*';
}

my ($status, $text);
sub finish {
	my ($pid, $said) = @_;
	# What does not end by itself is ended here, with all that it has started.
	local $SIG{ALRM} = sub { kill 'KILL', map { -$_ } $pid, children($pid); };
	alarm 30;
	$text = do { local $/; <$said> } // '';
	close $said;
	alarm 0;
	$status = $? & 127 ? 'signal' : $? >> 8;
	return $status;
}

sub run { finish(start(@_)) }

sub left_over { join ' ', glob("$dir/*.new $dir/there/*.new"), grep { m{/export\.} } glob "'$work'/*" }

# A command that tells of its environment and its words.
put("$dir/tools/tell", "#!/bin/sh\nfor word; do echo \"word \$word\"; done\n"
	. "env | sed -n 's/^TAVRN_EXPORT_/export /p' | sort\ncat >/dev/null\nexit \${TELL_STATUS:-0}\n");
chmod 0755, "$dir/tools/tell";

# ---- everything

make('surface');
is(run('demo', 'there/demo.frag', 'demo.spv', "$dir/there/demo.sif", './demo.rif', 'tools/tell  one "two three" $HOME *'), 0,
	'all of it');
is($text, <<"END_TEXT", 'each file and each word of the command is told');
wrote there/demo.frag
wrote demo.spv
wrote $dir/there/demo.sif
wrote ./demo.rif
running tools/tell  one "two three" \$HOME *
word one
word two three
word \$HOME
word *
export COMPILED=$dir/demo.spv
export NAME=demo
export RENDERIFACE=$dir/demo.rif
export SHADERIFACE=$dir/there/demo.sif
export SOURCE=$dir/there/demo.frag
END_TEXT
is(get("$dir/there/demo.frag"), get("$work/demo"), 'the source');
is(get("$dir/demo.spv"), get("$work/demo.spv"), 'the compiled shader');
like(get("$dir/there/demo.sif"), qr{^shader "demo"\ntype surface\n.*^    >A demo\.\n.*^    parameter Ks \{}ms, 'the shader interface');
is(decode_json(get("$dir/demo.rif"))->{uniforms}[0]{name}, 'Ks', 'the render interface');
is(left_over(), '', 'and nothing else');

mkdir "$dir/my tools";
rename "$dir/tools/tell", "$dir/my tools/tell";
is(run('demo', ('-') x 4, qq{"$dir/my tools/tell"\ta" "b"" "" 'x y'}), 0, 'a command in quotes');
is($text, qq{running "$dir/my tools/tell"\ta" "b"" "" 'x y'\nword a b\nword \nword 'x\nword y'\nexport NAME=demo\n},
	'quotes keep blanks and empty words, anywhere in a word');
rename "$dir/my tools/tell", "$dir/tools/tell";
is(run('demo', ('-') x 4, 'tools/tell "one two'), 1, 'a quote that is not closed');
is($text, qq{exportall: not run, since a double quote in it is not closed: tools/tell "one two\n}, 'is told');
is(run('demo', "there/a \"b\" c.frag", ('-') x 4), 0, 'quotes in a path');
ok(-s "$dir/there/a \"b\" c.frag", 'are part of it');
unlink "$dir/there/a \"b\" c.frag";

# ---- files of others beside a target

my $precious = put("$dir/precious", 'precious');
for my $i (1 .. 4) {
	my @targets = ('-') x 5;
	$targets[$i - 1] = "$dir/there/planted";
	my $pid = open(my $said, '-|') // die;
	if (!$pid) {
		symlink $precious, "$dir/there/planted.$$.new" or die;
		open STDERR, '>&', \*STDOUT;
		exec "$installation/bin/PerlExec", "$bin/exportall", 'demo', @targets;
	}
	is(finish($pid, $said), 0, "a link in the way of file $i") or diag($text);
	ok(-s "$dir/there/planted" && !-l "$dir/there/planted", 'is none of the export');
	is(get($precious), 'precious', 'and what it leads to is as it was');
	unlink "$dir/there/planted";
}
is(left_over(), '', 'and nothing is left over');

make('module');
is(run('demo', 'there/demo.frag', '-', 'there/demo.mif', '-', '-'), 0, 'two files of a module');
is($text, "wrote there/demo.frag\nwrote there/demo.mif\n", 'are all that is told');
like(get("$dir/there/demo.frag"), qr{^#ifndef TAVRN_MODULE_demo}, 'its source is the module, not the whole shader');
like(get("$dir/there/demo.mif"), qr{^type module$}m, 'and so is its interface');
is(run('demo', ('-') x 4, 'tools/tell'), 0, 'no files, but a command');
is($text, "running tools/tell\nexport NAME=demo\n", 'which has no paths to learn');
is(run('demo', ('-') x 5), 0, 'nothing at all');
is($text, '', 'is nothing to tell');
{
	local $ENV{PATH} = "$dir/tools:$ENV{PATH}";
	is(run('demo', ('-') x 4, 'tell found'), 0, 'a command on the search path');
	like($text, qr{^word found$}m, 'is found');
}
mkdir "$dir/with blank";
is(run('demo', 'with blank/demo.frag', ('-') x 4), 0, 'a path with a blank');
ok(-s "$dir/with blank/demo.frag", 'is one path');

# ---- failures

remove_tree("$dir/there");
mkdir "$dir/there";
put("$dir/demo.rif", 'older');
is(run('demo', 'none/demo.frag', 'taken.frag', 'there/demo.sif', 'there/none/demo.rif', 'tools/tell'), 1,
	'places that are not there');
is($text, <<'END_TEXT', 'are told, and the others are written; the command is not run');
exportall: cannot write none/demo.frag: the directory none/ does not exist
exportall: cannot write taken.frag: it is a directory
wrote there/demo.sif
exportall: cannot write there/none/demo.rif: the directory there/none/ does not exist
exportall: not run, since not everything was written: tools/tell
END_TEXT
ok(!-e "$dir/none", 'no directory is made');

rename "$work/demo.spv", "$work/kept.spv";
is(run('demo', '-', 'there/demo.spv', '-', '-', '-'), 1, 'nothing compiled');
like($text, qr{^exportall: cannot write there/demo\.spv: there is no compiled shader: \Q$work\E/demo\.spv$}m, 'is told');
rename "$work/kept.spv", "$work/demo.spv";
my $code = get("$work/codegenfile");
put("$work/codegenfile", $code =~ s/ButtonTitle/BattenTitle/r);
is(run('demo', 'there/demo.frag', '-', 'there/demo2.sif', 'demo.rif', '-'), 1, 'a script that fails');
like($text, qr{^guiprefilter: demo: .*damaged.*\nexportall: cannot write there/demo2\.sif: guiprefilter ended with status 1$}m,
	'is told with its words');
like($text, qr{^exportall: cannot write demo\.rif: renderiface ended with status 1$}m, 'and so is the other');
like($text, qr{^wrote there/demo\.frag$}m, 'the source is written all the same');
is(get("$dir/demo.rif"), 'older', 'and the older interface is as it was');
put("$work/codegenfile", $code);
is(left_over(), '', 'nothing is left over');

{
	local $ENV{TELL_STATUS} = 5;
	is(run('demo', 'there/demo.frag', ('-') x 3, 'tools/tell'), 1, 'a command that fails');
	like($text, qr{^exportall: tools/tell ended with status 5$}m, 'is told');
}
is(run('demo', ('-') x 4, 'tools/none -x'), 1, 'a command that is not there');
like($text, qr{^exportall: tools/none cannot be started: No such file}m, 'is told');
is(run('demo', ('-') x 4, 'sh -c kill${IFS}-SEGV${IFS}$$'), 1, 'a command that crashes');
like($text, qr{^exportall: sh was ended by signal 11$}m, 'is told');
is(run('demo', '-'), 2, 'words missing');
like($text, qr{^usage: exportall}, 'tells the usage');
is(run('a/b', ('-') x 5), 2, 'a path for a name');
{
	local $ENV{TAVRN_WORKDIR} = "$dir/none";
	is(run('demo', ('-') x 5), 1, 'no work directory');
	like($text, qr{TAVRN_WORKDIR must name}, 'is told');
}

# ---- stops

sub wait_for {
	my ($test) = @_;
	my $end = time + 30;
	sleep 0.02 while !$test->() && time < $end;
	return $test->();
}

put("$dir/kill", '');
unlink "$dir/there/demo.frag";
is(run('demo', 'there/demo.frag', ('-') x 3, 'tools/tell'), 3, 'a stop before anything');
is($text, "export of demo stopped\n", 'is told');
ok(!-e "$dir/there/demo.frag", 'and nothing is written');
unlink "$dir/kill";

# A process that nobody has waited for has ended all the same.
sub ended {
	my ($pid) = @_;
	return !kill(0, $pid) || (get("/proc/$pid/stat") // '') =~ /\) Z /;
}

# A command with a child that would keep the pipe open for long.
put("$dir/tools/long", "#!/bin/sh\nsleep 600 &\necho \$! >child\n: >started\nwait\n");
put("$dir/tools/deaf", "#!/usr/bin/perl\n\$SIG{TERM} = 'IGNORE';\nopen my \$f, '>', 'started';\nclose \$f;\nsleep 1 for 1 .. 600;\n");
chmod 0755, "$dir/tools/long", "$dir/tools/deaf";
for my $tool ('long', 'deaf') {
	unlink "$dir/started";
	my @running = start('demo', 'there/demo.frag', ('-') x 3, "tools/$tool");
	ok(wait_for(sub { -e "$dir/started" }), "a command that goes on, $tool");
	put("$dir/kill", '');
	is(finish(@running), 3, 'is stopped');
	is($text, "wrote there/demo.frag\nrunning tools/$tool\nexport of demo stopped\n", 'and that is told');
	unlink "$dir/kill";
}
{
	my $child = get("$dir/child") + 0;
	ok(wait_for(sub { ended($child) }), 'what the command has started has ended, too');
	unlink "$dir/started";
	my ($pid, $said) = start('demo', 'there/demo.frag', ('-') x 3, 'tools/long');
	wait_for(sub { -e "$dir/started" });
	kill 'TERM', $pid;
	is(finish($pid, $said), 1, 'the end of exportall');
	$child = get("$dir/child") + 0;
	ok(wait_for(sub { ended($child) }), 'is that of the command');
}
is(left_over(), '', 'nothing is left over');

done_testing;
