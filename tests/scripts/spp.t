# SPDX-License-Identifier: Apache-2.0
# spp: directives, code blocks, messages, hostile files.
use strict;
use warnings;
use File::Path 'make_path';
use File::Temp 'tempdir';
use FindBin;
use Test::More;

my $spp = "$FindBin::Bin/../../installation/mray/bin/spp";
my $dir = tempdir(CLEANUP => 1);
make_path("$dir/lib/include/more", "$dir/ops/deep");
$ENV{TAVRN_LIB} = "$dir/lib";

sub put {
	my ($name, @lines) = @_;
	open my $file, '>:raw', "$dir/$name" or die "$name: $!";
	print $file map { "$_\n" } @lines;
	close $file;
	return "$dir/$name";
}

# Behind the text, in $out, stands the table of its lines.
my ($status, $out, $err, $table);
sub run {
	my (@words) = @_;
	my $pid = fork;
	if (!$pid) {
		open STDOUT, '>', "$dir/out" or die;
		open STDERR, '>', "$dir/err" or die;
		exec $spp, @words;
	}
	waitpid $pid, 0;
	$status = $? & 127 ? 'signal' : $? >> 8;
	($out, $err) = map {
		open my $f, '<:raw', "$dir/$_" or die;
		local $/;
		<$f> // '';
	} 'out', 'err';
	$table = $out =~ s/^(#source lines\n.*)//ms ? $1 : undef;
	return $status;
}

sub expands {
	my ($lines, $wanted, $what) = @_;
	run(put('ops/main', @$lines));
	is_deeply([$status, $out, $err], [0, join('', map { "$_\n" } @$wanted), ''], $what);
}

sub refuses {
	my ($lines, $message, $what) = @_;
	run(put('ops/main', @$lines));
	is($status, 1, "$what: exit status");
	like($err, $message, "$what: message");
	is($out, '', "$what: no half output");
}

# ---- text

expands(['size 1 2', '# a remark', '', '#comment', '  indented'],
	['size 1 2', '# a remark', '', '#comment', '  indented'], 'plain text passes');
expands(["size 1 2\r", "codegen.main-body append\r", "x;\r", "<<EOT>>\r", "last\r"],
	['size 1 2', 'codegen.main-body append', 'x;', '<<EOT>>', 'last'], 'CR LF becomes LF');
put('ops/main', 'no line end');
truncate "$dir/ops/main", 11;
run("$dir/ops/main");
is($out, "no line end\n", 'a last line without a line end gets one');
expands([], [], 'an empty file gives an empty text');
expands(['boxhelp {', ">\xe9\xfc\xff", '}'], ['boxhelp {', ">\xe9\xfc\xff", '}'], 'bytes above 127 pass');

# ---- definitions

expands(['@A@ b', '#define A one two', '@A@ @B@ @A', '#undef A', '@A@'],
	['@A@ b', 'one two @B@ @A', '@A@'], '@NAME@ stands for its value from #define to #undef');
expands(['#define EMPTY', '[@EMPTY@]'], ['[]'], 'a definition without a value');
expands(['#define A @B@', '#define B x', '@A@'], ['@B@'], 'values are not looked through again');
expands(['#define A B', 'A $A a@b.c'], ['A $A a@b.c'], 'a name is not replaced without its signs');
expands(['#define R 0 1', 'codegen.main-body append', 'y = @R@;', '<<EOT>>'],
	['codegen.main-body append', 'y = 0 1;', '<<EOT>>'], 'definitions reach into code');

# ---- conditions

expands(['#ifdef A', 'yes', '#else', 'no', '#endif', '#ifndef A', 'none', '#endif'],
	['no', 'none'], '#ifdef and #ifndef of a name that is not set');
expands(['#define A', '#ifdef A', 'yes', '#else', 'no', '#endif', '#ifndef A', 'none', '#endif'],
	['yes'], '#ifdef and #ifndef of a name that is set');
expands(['#define K two words', '#if K == two words', 'a', '#endif', '#if K != two words', 'b', '#else', 'c', '#endif'],
	['a', 'c'], '#if compares the whole value');
expands(['#ifdef A', '#ifdef B', 'x', '#else', 'y', '#endif', '#else', 'z', '#endif'],
	['z'], 'an #else inside a part left out is left out, too');
expands(['#ifdef A', '#include "nowhere"', '#define B', '#error no', '#endif', '#ifdef B', 'b', '#endif', 'end'],
	['end'], 'directives in a part left out do nothing');
expands(["  \t#define A x  ", '   #ifdef A', '@A@', '  #endif  '], ['x'], 'blanks round directives');
expands(['# define A', '#defined B', '#ifdefs', '#ifdef A', 'x', '#endif'],
	['# define A', '#defined B', '#ifdefs'], 'only the very word right behind the # is a directive');

# ---- code blocks

my @code = ('codegen.global-header unique', '#extension GL_ARB_gpu_shader5 : enable', '#define PI 3.14',
	'#ifdef GL_ES', '#error no', '#else', '#include "x"', '#if 1', '<<EOT>> ', '<<EOT>>');
expands(['a', @code, '#define A 1', '@A@'], ['a', @code, '1'],
	'directives of the shading language pass in a code block');
expands(['#ifdef NO', @code, 'codegen.main-body append', '#endif', '<<EOT>>', '#endif', 'b'],
	['b'], 'a code block in a part left out is still one block');
expands(['codegen.global-header append@glsl/x.glsl', '#define A 1', '@A@'],
	['codegen.global-header append@glsl/x.glsl', '1'], 'the file form opens no block');
expands(['codegen.linecomment "//"', '#define A 1', '@A@'], ['codegen.linecomment "//"', '1'], 'nor does a setting');

# ---- include

put('ops/near.inc', 'near');
put('lib/include/far.inc', 'far', '#include "more/deep.inc"', '@N@');
put('lib/include/more/deep.inc', 'deep', '#include "side.inc"');
put('lib/include/more/side.inc', 'side', '#define N set below');
put('lib/include/near.inc', 'the wrong one');
expands(['#include "near.inc"', '#include "far.inc"', '@N@', '#include "near.inc"'],
	['near', 'far', 'deep', 'side', 'set below', 'set below', 'near'],
	'files come from beside the file that asks, then from the library');
put('ops/main', '#include "near.inc"');
chdir "$dir/ops";
is(run('main'), 0, 'a file named without a directory');
chdir '/';

refuses(['one', '#include "gone.inc"'],
	qr{ops/main:2: .*"gone\.inc".*\Q$dir\E/ops/gone\.inc.*\Q$dir\E/lib/include/gone\.inc}, 'a missing include');
refuses(['#include near.inc'], qr{main:1: expected #include "FILE"}, 'an include without quotes');
refuses(['#include "deep"'], qr{main:1: .*deep: is a directory}, 'an include that is a directory');
put('ops/a.inc', '', '#include "b.inc"');
put('ops/b.inc', '#include "../ops/a.inc"');
refuses(['#include "a.inc"'],
	qr{b\.inc:1: #include goes in a circle: \S+main -> \S+a\.inc -> \S+b\.inc -> \S+a\.inc\n}, 'a circle');
put('ops/bad.inc', 'x', '#ifdef A');
refuses(['#include "bad.inc"', '#endif'], qr{bad\.inc:2: this #ifdef has no #endif},
	'a condition must end in its file');

# ---- where the lines come from

sub comes_from {
	my ($lines, $wanted, $what) = @_;
	run(put('ops/main', @$lines));
	is($table, join('', map { "$_\n" } '#source lines', @$wanted), $what);
}
comes_from(['a', '', '# b', 'codegen.main-body append', '#define x', '<<EOT>>', 'c'],
	["#file $dir/ops/main", '#line 1 1 1'], 'lines that follow one another need one word');
comes_from([], ["#file $dir/ops/main"], 'an empty file gives no line');
comes_from(['#define A x', '#ifdef A', '@A@', '#else', 'b', '#endif', 'c', "d\r"],
	["#file $dir/ops/main", '#line 1 1 3', '#line 2 1 7'], 'directives and what they leave out are passed over');
put('ops/two.inc', 'one', 'two');
put('ops/none.inc', '#define N 1');
comes_from(['', '#include "two.inc"', 'a', '#include "none.inc"', 'help {', '#include "two.inc"', '}'],
	["#file $dir/ops/main", "#file $dir/ops/two.inc", "#file $dir/ops/none.inc", '#line 1 1 1', '#line 2 2 1',
		'#line 4 1 3', '#line 5 1 5', '#line 6 2 1', '#line 8 1 7'],
	'each file is named once, also one that gives no line');
comes_from(['#source lines', "#file $dir/other", '#line 1 1 1'], ["#file $dir/other", '#line 1 1 1',
		'#source lines', "#file $dir/ops/main", '#line 1 1 1'], 'a table that stands in a file is its text');
put("ops/broken\nname", 'a');
run("$dir/ops/broken\nname");
is($out, "a\n", 'a file whose name breaks the line gives its text');
is($table, undef, 'and no table, which could not hold the name');

# ---- messages

refuses(['x', '#if A == 1', '#endif'], qr{main:2: #if: A is not defined}, '#if of a name that is not set');
refuses(['#if A'], qr{main:1: expected #if NAME == VALUE}, 'a bad #if');
refuses(['#ifdef A b'], qr{main:1: expected #ifdef NAME}, 'a bad #ifdef');
refuses(['#else'], qr{main:1: #else without #if}, '#else alone');
refuses(['#endif'], qr{main:1: #endif without #if}, '#endif alone');
refuses(['#ifdef A', '', '#else', '#else', '#endif'], qr{main:4: second #else .*line 1}, 'two #else');
refuses(['', '#ifdef A', '#ifndef B', '#endif'], qr{main:2: this #ifdef has no #endif}, 'no #endif');
refuses(['#error stop  here'], qr{main:1: #error stop  here$}m, '#error');
refuses(['#undef A B'], qr{main:1: expected #undef NAME}, 'a bad #undef');
refuses(['#define 1x y'], qr{main:1: expected #define NAME}, 'a bad #define');
refuses(['a', 'codegen.main-body append', 'x;', '<<EOT>> '],
	qr{main:2: this code block has no <<EOT>>}, 'an open code block');

# ---- hostile files

is(run("$dir/none"), 1, 'a missing file');
like($err, qr{\Q$dir\E/none: No such file}, 'is named');
is(run("$dir/ops"), 1, 'a directory');
like($err, qr{ops: is a directory}, 'is told');
is(run('/dev/zero'), 1, 'a device');
like($err, qr{not a regular file}, 'is not read for ever');
refuses(['one', "tw\0o"], qr{main:2: is not a text file}, 'a zero byte');
put('ops/main', join '', map { chr(($_ * 7919) % 256) } 1 .. 5000);
is(run("$dir/ops/main"), 1, 'binary noise');
like($err, qr{main:\d+: }, 'is told with a line');
is(run(), 2, 'no file');
is(run('a', 'b'), 2, 'two files');
SKIP: {
	my $file = put('ops/secret', 'x');
	chmod 0, $file;
	skip 'this user may read everything', 2 if -r $file;
	is(run($file), 1, 'an unreadable file');
	like($err, qr{secret: Permission denied}, 'is told');
}
{
	local %ENV = %ENV;
	delete $ENV{TAVRN_LIB};
	put('ops/main', '#include "common.inc"');
	is(run("$dir/ops/main"), 0, 'without TAVRN_LIB the library is the one of the script');
	like($out, qr{\@use convert}, 'and its files are found');
}
SKIP: {
	skip 'no /dev/full', 1 unless -w '/dev/full';
	put('ops/main', 'x');
	isnt(system("$spp $dir/ops/main > /dev/full 2>$dir/err"), 0, 'a full disk is an error');
}

# ---- every definition of the library passes

my $mray = "$FindBin::Bin/../../installation/mray";
$ENV{TAVRN_LIB} = $mray;
my @definitions = grep { !/_SEPARATOR_$/ } glob "$mray/menu/*/*";
cmp_ok(scalar @definitions, '>=', 14, 'the library has its operators');
for my $file (@definitions) {
	is(run($file), 0, 'passes: ' . ($file =~ m{([^/]+)$})[0]) or diag $err;
	unlike($out, qr{\@[A-Z_]+\@|^\s*#(?:include|define|ifdef)}m, 'and nothing is left to expand');
}

done_testing;
